// svg.h - a drawing, written as an SVG file.
#pragma once

#include <cstdio>
#include <fstream>
#include <string>

/// Red, green and blue from 0 to 1.
struct Color {
  double red, green, blue;

  /// This at share 0, the other at share 1.
  Color mixedWith(Color const& other, double share) const {
    return {red + (other.red - red) * share, green + (other.green - green) * share, blue + (other.blue - blue) * share};
  }
  std::string text() const {
    char hex[8];
    auto const byte = [](double x) { return static_cast<unsigned int>(255.0 * x + 0.5) & 255U; };
    std::snprintf(hex, sizeof hex, "#%02x%02x%02x", byte(red), byte(green), byte(blue));
    return hex;
  }
};

/// Lengths in pixels; x to the right, y downwards.
class Svg {
 public:
  Svg(int width, int height) {
    m_Text = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + std::to_string(width) + "\" height=\"" +
             std::to_string(height) +
             "\" font-family=\"sans-serif\">\n<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  }
  void circle(double x, double y, double radius, Color const& fill) {
    m_Text += "<circle cx=\"" + number(x) + "\" cy=\"" + number(y) + "\" r=\"" + number(radius) + "\" fill=\"" +
              fill.text() + "\"/>\n";
  }
  /// What follows, up to endClip(), is only seen within the circle.
  void beginClip(double x, double y, double radius) {
    std::string const name = "clip" + std::to_string(++m_Clips);
    m_Text += "<clipPath id=\"" + name + "\"><circle cx=\"" + number(x) + "\" cy=\"" + number(y) + "\" r=\"" +
              number(radius) + "\"/></clipPath>\n<g clip-path=\"url(#" + name + ")\">\n";
  }
  void endClip() { m_Text += "</g>\n"; }
  void ring(double x, double y, double radius, Color const& stroke) {
    m_Text += "<circle cx=\"" + number(x) + "\" cy=\"" + number(y) + "\" r=\"" + number(radius) +
              "\" fill=\"none\" stroke=\"" + stroke.text() + "\"/>\n";
  }
  void line(double x1, double y1, double x2, double y2, Color const& stroke, double width) {
    m_Text += "<line x1=\"" + number(x1) + "\" y1=\"" + number(y1) + "\" x2=\"" + number(x2) + "\" y2=\"" + number(y2) +
              "\" stroke=\"" + stroke.text() + "\" stroke-width=\"" + number(width) + "\" stroke-linecap=\"round\"/>\n";
  }
  void rectangle(double x, double y, double width, double height, Color const& fill) {
    m_Text += "<rect x=\"" + number(x) + "\" y=\"" + number(y) + "\" width=\"" + number(width) + "\" height=\"" +
              number(height) + "\" fill=\"" + fill.text() + "\"/>\n";
  }
  /// A closed loop of x, y pairs; the stroke of the same colour closes the seams between neighbours.
  void polygon(double const* xy, unsigned int corners, Color const& fill) {
    m_Text += "<polygon points=\"";
    for (unsigned int i = 0; i < 2 * corners; ++i) m_Text += number(xy[i]) + (i % 2 == 0 ? "," : " ");
    m_Text += "\" fill=\"" + fill.text() + "\" stroke=\"" + fill.text() + "\" stroke-width=\"0.5\"/>\n";
  }
  /// Anchor: "start", "middle" or "end".
  void text(double x, double y, int size, char const* anchor, std::string const& words) {
    m_Text += "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" font-size=\"" + std::to_string(size) +
              "\" text-anchor=\"" + anchor + "\">" + escaped(words) + "</text>\n";
  }
  bool save(std::string const& fileName) const {
    std::ofstream file(fileName, std::ios::binary);
    file << m_Text << "</svg>\n";
    return static_cast<bool>(file.flush());
  }

 private:
  static std::string number(double x) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.1f", x);
    return digits;
  }
  static std::string escaped(std::string const& words) {
    std::string safe;
    for (char const c : words) safe += c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
    return safe;
  }

  std::string m_Text;
  int m_Clips = 0;
};
