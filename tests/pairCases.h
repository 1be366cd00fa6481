// pairCases.h - reads reference cases of convex pairs: shapes as text, poses, signed distances with tolerances.
#pragma once

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/zuCoordinateSystemTransformation.h"

/// One block of the file. `a` and `b` are the shapes as the file has them: "box 1 2 3".
struct PairCase {
  std::string name, a, b;
  ZuCoordinateSystemTransformation poseA, poseB;
  double distance = 0.0;   ///< signed
  double tolerance = 0.0;  ///< of the distance
};

/// Empty when the file is missing. Numbers are read by rows of key and value, blocks end with "end".
inline std::vector<PairCase> readPairCases(std::string const& fileName) {
  auto const pose = [](std::string const& text) {
    std::istringstream in(text);
    double n[7] = {};
    for (double& number : n) in >> number;
    return ZuCoordinateSystemTransformation(ZuVector(n[0], n[1], n[2]), ZuOrientation(n[3], n[4], n[5], n[6]));
  };
  std::vector<PairCase> cases;
  std::map<std::string, std::string> block;
  std::ifstream file(fileName);
  for (std::string line; std::getline(file, line);) {
    std::size_t const space = line.find(' ');
    if (line.empty() || line[0] == '#') continue;
    if (line != "end") {
      block[line.substr(0, space)] = space == std::string::npos ? "" : line.substr(space + 1);
      continue;
    }
    cases.push_back({block["case"], block["a"], block["b"], pose(block["a_pose"]), pose(block["b_pose"]),
                     std::stod(block["distance"]), std::stod(block["tol"])});
    block.clear();
  }
  return cases;
}
