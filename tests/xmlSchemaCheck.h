// xmlSchemaCheck.h - whether documents validate against the schema of their object.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "foundation/zuXmlObject.h"
#include "tests/temporaryFolder.h"

inline bool xmllintIsInstalled() { return std::system("xmllint --version >/dev/null 2>&1") == 0; }

/// What xmllint says when the document does not validate against the schema of the object; empty when it does.
inline std::string schemaFault(ZuXmlObject const& object, std::string const& document) {
  TemporaryFolder const folder;
  if (!object.createSchema(folder.file("schema"), "root")) return "no schema";
  std::ofstream(folder.file("document")) << document;
  std::string const command = "xmllint --noout --nonet --schema '" + folder.file("schema") + "' '" +
                              folder.file("document") + "' >'" + folder.file("out") + "' 2>&1";
  if (std::system(command.c_str()) == 0) return {};
  return contents(folder.file("out"));
}
