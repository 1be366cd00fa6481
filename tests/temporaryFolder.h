// temporaryFolder.h - a folder that a test may fill.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

/// The bytes of a file; none when it can't be read.
inline std::string contents(std::string const& file) {
  std::ostringstream bytes;
  bytes << std::ifstream(file, std::ios::binary).rdbuf();
  return bytes.str();
}

/// Exists, empty at first, as long as this does.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "zuTestXXXXXX").string();
    m_Path = mkdtemp(name.data());
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_Path, ignored);
  }
  TemporaryFolder(TemporaryFolder const&) = delete;
  TemporaryFolder& operator=(TemporaryFolder const&) = delete;

  std::string file(std::string const& name) const { return m_Path + '/' + name; }
  std::size_t count() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(m_Path), std::filesystem::directory_iterator()));
  }

 private:
  std::string m_Path;
};
