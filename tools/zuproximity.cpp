// zuproximity - how close do the bodies of a moving scene come, cycle by cycle?
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "foundation/zuXmlWriter.h"
#include "geometry/zuRobustGjk.h"
#include "tools/proximityStudy.h"
#include "tools/scene.h"
#include "tools/sceneMeshes.h"

namespace {

char const* const theUsage =
    "usage: zuproximity [SCENE.xml] [option...]\n"
    "\n"
    "Steps a scene through its cycles and reports the closest pair of shapes of each cycle, with its distance and\n"
    "nearest points in the world frame, and a summary. Distances are negative by the depth of an overlap.\n"
    "\n"
    "  --cycles N           do N cycles instead of one for each frame of the scene\n"
    "  --margin M           pass over pairs that are farther apart than M metres; without it every pair is asked\n"
    "  --mesh [BODY=]FILE   take the mesh of an .obj or .stl file (in metres) in place of the shapes of BODY, "
    "or\n"
    "                       as a new body at the origin of the world; once more for the same BODY: beside it\n"
    "  --meshes TABLE       the same for each line of TABLE, BODY FILE [x y z [qw qx qy qz]]; FILE is sought beside\n"
    "                       the table and in the folder meshes there, also with .obj and .stl added\n"
    "  --exact-meshes       take mesh files as they are, hollows and all, and not their convex hulls: slower, exact\n"
    "                       against other meshes, and overlaps have distance 0\n"
    "  --engine ENGINE      how pairs without a closed form are answered: robust (the usual one) or default\n"
    "  --csv FILE           write a line for each cycle to FILE\n"
    "  --save FILE.xml      write the scene, with its meshes, to FILE.xml\n"
    "  --summary            print the summary only\n";

constexpr int theBadInput = 2;  // exit code

struct Options {
  std::string scene;
  std::string csv;
  std::string saved;
  std::vector<MeshSource> meshes;
  MeshUse meshUse = MeshUse::HULL;
  std::size_t cycles = 0;
  double margin = ProximityStudy::m_theNoMargin;
  bool robustEngine = true;
  bool summaryOnly = false;
  bool help = false;
};

bool complain(std::string const& what) {
  std::fprintf(stderr, "zuproximity: %s\n", what.c_str());
  return false;
}

bool takeCycles(std::string const& text, Options& options) {
  char* end = nullptr;
  options.cycles = std::strtoul(text.c_str(), &end, 10);
  bool const isNumber = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
  return (isNumber && options.cycles > 0) || complain("--cycles takes a whole number above 0, not \"" + text + "\"");
}

bool takeMargin(std::string const& text, Options& options) {
  char* end = nullptr;
  options.margin = std::strtod(text.c_str(), &end);
  bool const isNumber = end != text.c_str() && *end == '\0' && std::isfinite(options.margin);
  return (isNumber && options.margin >= 0.0) || complain("--margin takes a length of at least 0, not \"" + text + "\"");
}

bool takeMesh(std::string const& text, Options& options) {
  std::size_t const equals = text.find('=');
  MeshSource source;
  if (equals != std::string::npos) source.body = text.substr(0, equals);
  source.fileName = text.substr(equals + 1);  // npos + 1 is 0
  options.meshes.push_back(source);
  return (!source.fileName.empty() && equals != 0) || complain("--mesh takes [BODY=]FILE, not \"" + text + "\"");
}

bool takeMeshes(std::string const& text, Options& options) { return readMeshTable(text, options.meshes); }

bool takeEngine(std::string const& text, Options& options) {
  options.robustEngine = text == "robust";
  return options.robustEngine || text == "default" ||
         complain("--engine takes robust or default, not \"" + text + "\"");
}

bool takeCsv(std::string const& text, Options& options) {
  options.csv = text;
  return !text.empty() || complain("--csv takes a file name");
}

bool takeSaved(std::string const& text, Options& options) {
  options.saved = text;
  return !text.empty() || complain("--save takes a file name");
}

/// The options that are followed by a value.
std::map<std::string, bool (*)(std::string const&, Options&)> const theValueOptions = {
    {"--cycles", takeCycles}, {"--margin", takeMargin}, {"--mesh", takeMesh}, {"--meshes", takeMeshes},
    {"--csv", takeCsv},       {"--engine", takeEngine}, {"--save", takeSaved}};

bool takeFlag(std::string const& argument, Options& options) {
  if (argument == "--help" || argument == "-h") return options.help = true;
  if (argument == "--summary") return options.summaryOnly = true;
  if (argument != "--exact-meshes") return complain("unknown option " + argument);
  options.meshUse = MeshUse::FACES;
  return true;
}

bool takeScene(std::string const& argument, Options& options) {
  if (!options.scene.empty()) return complain("a second scene, " + argument);
  options.scene = argument;
  return true;
}

bool parse(int count, char** arguments, Options& options) {
  for (int i = 1; i < count; ++i) {
    std::string const argument = arguments[i];
    auto const option = theValueOptions.find(argument);
    if (option != theValueOptions.end()) {
      if (i + 1 == count) return complain(argument + " needs a value");
      if (!option->second(arguments[++i], options)) return false;
    } else if (argument.size() > 1 && argument[0] == '-') {
      if (!takeFlag(argument, options)) return false;
    } else if (!takeScene(argument, options)) {
      return false;
    }
  }
  bool const hasInput = !options.scene.empty() || !options.meshes.empty();
  return options.help || hasInput || complain("no scene; try --help");
}

std::string nameOf(Scene const& scene, std::size_t body, std::size_t shape) {
  return scene.bodies()[body].name() + "[" + std::to_string(shape) + "]";
}

void printPair(Scene const& scene, PairResult const& pair) {
  std::printf("%s - %s  distance %.9g m  at (%.6g %.6g %.6g) and (%.6g %.6g %.6g)\n",
              nameOf(scene, pair.body1, pair.shape1).c_str(), nameOf(scene, pair.body2, pair.shape2).c_str(),
              pair.distance, pair.point1[0], pair.point1[1], pair.point1[2], pair.point2[0], pair.point2[1],
              pair.point2[2]);
}

void printCycle(Scene const& scene, CycleResult const& result) {
  std::printf("cycle %zu: %zu pairs, ", result.cycle, result.pairsAsked);
  if (result.found) {
    printPair(scene, result.closest);
  } else {
    std::printf("none within the margin\n");
  }
}

/// One line for each cycle; numbers read back to the same doubles.
class CsvFile {
 public:
  bool open(std::string const& fileName) {
    if (fileName.empty()) return true;
    m_File.reset(std::fopen(fileName.c_str(), "w"));
    if (!m_File) return complain(fileName + ": " + std::strerror(errno));
    std::fputs("cycle,pairs,body1,shape1,body2,shape2,distance,x1,y1,z1,x2,y2,z2\n", m_File.get());
    return true;
  }
  void write(Scene const& scene, CycleResult const& result) {
    if (!m_File) return;
    std::string line = std::to_string(result.cycle) + ',' + std::to_string(result.pairsAsked);
    if (result.found) {
      PairResult const& pair = result.closest;
      line += ',' + quoted(scene.bodies()[pair.body1].name()) + ',' + std::to_string(pair.shape1);
      line += ',' + quoted(scene.bodies()[pair.body2].name()) + ',' + std::to_string(pair.shape2);
      line += ',' + zuXmlText(pair.distance);
      for (ZuVector const& point : {pair.point1, pair.point2}) {
        for (unsigned int i = 0; i < 3; ++i) line += ',' + zuXmlText(point[i]);
      }
    } else {
      line += ",,,,,,,,,,,";
    }
    std::fprintf(m_File.get(), "%s\n", line.c_str());
  }
  /// Whether everything has reached the file.
  bool close(std::string const& fileName) {
    if (!m_File) return true;
    bool const written = std::ferror(m_File.get()) == 0 && std::fflush(m_File.get()) == 0;
    return written || complain(fileName + ": not written");
  }

 private:
  static std::string quoted(std::string const& text) {
    std::string result = "\"";
    for (char const c : text) result += c == '"' ? std::string("\"\"") : std::string(1, c);
    return result + '"';
  }
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Closer> m_File;
};

/// A bar on a terminal; nothing in a pipe.
class ProgressBar {
 public:
  explicit ProgressBar(std::size_t total) : m_Total(total), m_Shown(isatty(STDERR_FILENO) != 0) {}
  ~ProgressBar() {
    if (m_Shown) std::fprintf(stderr, "\r\033[K");
  }
  ProgressBar(ProgressBar const&) = delete;
  ProgressBar& operator=(ProgressBar const&) = delete;

  void show(std::size_t done) {
    int const percent = static_cast<int>(100 * done / m_Total);
    if (!m_Shown || percent == m_Percent) return;
    m_Percent = percent;
    std::string const bar(static_cast<std::size_t>(percent) / 2, '#');
    std::fprintf(stderr, "\r[%-50s] %3d %%", bar.c_str(), percent);
    std::fflush(stderr);
  }

 private:
  std::size_t m_Total;
  int m_Percent = -1;
  bool m_Shown;
};

struct Summary {
  std::size_t cycles = 0;
  std::size_t pairsAsked = 0;
  double seconds = 0.0;
  double slowest = 0.0;
  CycleResult closest;

  void add(CycleResult const& result) {
    ++cycles;
    pairsAsked += result.pairsAsked;
    seconds += result.seconds;
    slowest = std::max(slowest, result.seconds);
    bool const isCloser = !closest.found || result.closest.distance < closest.closest.distance;
    if (result.found && isCloser) closest = result;
  }
};

/// Of the bodies that have any, and in all.
void printVertices(Scene const& scene) {
  std::size_t all = 0;
  std::string bodies;
  for (Body const& body : scene.bodies()) {
    std::size_t const vertices = body.numberOfVertices();
    if (vertices == 0) continue;
    all += vertices;
    bodies += (bodies.empty() ? ": " : ", ") + body.name() + ' ' + std::to_string(vertices);
  }
  if (all != 0) std::printf("vertices      %zu%s\n", all, bodies.c_str());
}

void printSummary(Scene const& scene, Summary const& summary, ProximityStudy const& study) {
  std::size_t shapes = 0;
  for (Body const& body : scene.bodies()) shapes += body.shapes().size();
  std::printf("bodies        %zu with %zu shapes\n", scene.bodies().size(), shapes);
  printVertices(scene);
  std::printf("cycles        %zu\n", summary.cycles);
  std::printf("pairs asked   %zu\n", summary.pairsAsked);
  for (std::string const& types : study.unanswered()) std::printf("unanswered    %s\n", types.c_str());
  std::printf("closest       ");
  if (summary.closest.found) {
    std::printf("cycle %zu: ", summary.closest.cycle);
    printPair(scene, summary.closest.closest);
  } else {
    std::printf("none within the margin\n");
  }
  std::printf("time a cycle  %.1f us, slowest %.1f us\n", 1e6 * summary.seconds / static_cast<double>(summary.cycles),
              1e6 * summary.slowest);
}

int run(Options const& options) {
  if (options.robustEngine) ZuShape::setGjkEnginePrototype(ZuRobustGJK());
  Scene scene;
  CsvFile csv;
  if (!options.scene.empty() && !scene.load(options.scene)) return theBadInput;
  if (!addMeshes(scene, options.meshes, options.meshUse) || !csv.open(options.csv)) return theBadInput;
  if (!options.saved.empty() && !scene.writeToFile(options.saved, Scene::classToken())) return theBadInput;
  std::size_t const cycles = options.cycles > 0 ? options.cycles : scene.numberOfCycles();
  ProximityStudy study(scene, options.margin);
  Summary summary;
  {
    ProgressBar bar(cycles);
    for (std::size_t cycle = 0; cycle < cycles; ++cycle) {
      CycleResult const result = study.next();
      summary.add(result);
      csv.write(scene, result);
      if (!options.summaryOnly) printCycle(scene, result);
      bar.show(cycle + 1);
    }
  }
  printSummary(scene, summary, study);
  return csv.close(options.csv) ? EXIT_SUCCESS : theBadInput;
}

}  // namespace

int main(int count, char** arguments) {
  Options options;
  if (!parse(count, arguments, options)) return theBadInput;
  if (options.help) {
    std::fputs(theUsage, stdout);
    return EXIT_SUCCESS;
  }
  return run(options);
}
