// sharedFiles.h - where tests find the robots, meshes and reference cases that are not part of this project.
#pragma once

#include <cstdlib>
#include <string>

/// The path of a file of the shared collection: below the environment variable ZU_SHARED, else where the build found
/// it. The file may be missing: a test that needs it skips itself then.
inline std::string sharedFile(std::string const& name) {
  char const* const folder = std::getenv("ZU_SHARED");
  return std::string(folder != nullptr ? folder : ZU_SHARED_DIR) + '/' + name;
}
