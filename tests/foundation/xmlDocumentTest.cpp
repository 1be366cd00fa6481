// What documents say and what objects hold: hostile documents, exact values, attributes, special elements, visitors.
#include <cfloat>
#include <cstring>

#include "tests/oneMessage.h"
#include "tests/xmlSamples.h"

namespace {

std::string inZoo(std::string const& element) { return "<zoo>\n" + element + "\n</zoo>\n"; }

/// What each message refuses.
using Refusals = std::vector<std::pair<char const*, std::vector<std::string>>>;

std::string repeated(std::string const& text, std::size_t times) {
  std::string all;
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

/// Reads the document into a container that holds something, and checks all that refusing means.
void expectRefused(std::string const& document, std::string const& message) {
  SCOPED_TRACE(document.substr(0, 200));
  ZuXmlBaseVariableCompoundType target = zoo();
  target.append(std::make_unique<Node>(Node::testObject()), Node::classToken());
  std::string const before = documentOf(target);
  PrintSink sink;
  EXPECT_FALSE(target.readFromBuffer(document));
  EXPECT_TRUE(saysOnce(sink, message));
  EXPECT_EQ(documentOf(target), before);
}

}  // namespace

TEST(XmlDocument, RefusesWhatIsNoValueAndNamesItsLine) {
  for (std::string const text : {"",         " ",      "1.0.0",    "0x10",     "1e999",
                                 "-1e999",   "1,5",    "1 2",      "--1",      "+-1",
                                 "-+1",      "- 1",    "1e",       ".",        "e5",
                                 "one",      "1m",     "infinity", "INF",      "NaN",
                                 "nan(0x0)", "nan(0x", "nan(0x1",  "nan()",    "nan(0x10000000000000)",
                                 "nan(0xg)", "nan1",   "inf1",     "\302\2401"})
    expectRefused(inZoo("<real>" + text + "</real>"), "ZuXmlReader::read-->buffer, line 2: <real> is not a number");
  Refusals const theElements = {
      {"line 2: unknown element <unknown>", {"<unknown/>"}},
      {"line 2: unknown element <x:real>", {"<x:real>1</x:real>"}},
      {"line 1: text between the elements of <zoo>", {"<real>1</real>text", "text<real>1</real>"}},
      {"line 2: text between the elements of <node>",
       {"<node>text<weight>1</weight></node>", "<node>text</node>", "<node><![CDATA[text]]></node>"}},
      {"line 4: a second <weight>", {"<node>\n<weight>1</weight>\n<weight>1</weight></node>"}},
      {"line 3: unknown element <length>", {"<node>\n<length>1</length></node>"}},
      {"line 2: a second attribute \"name\"", {"<node name='a' name='b'/>"}},
      {"line 2: unknown attribute \"size\"",
       {"<node size='1'/>", "<real size='1'>1</real>", "<points size='1'/>", "<table size='1'/>"}},
      {"line 2: <x> inside <real>", {"<real><x/></real>"}},
      {"line 2: <x> inside <vector>", {"<vector>1 <x/>2 3</vector>"}},
      {"line 2: <vector> is not 3 numbers",
       {"<vector/>", "<vector>1 2</vector>", "<vector>1 2 3 4</vector>", "<vector>1,2,3</vector>"}},
      {"line 4: an element other than <vector>", {"<points>\n<vector>0 0 0</vector>\n<point>0 0 0</point></points>"}},
      {"line 2: an element other than <node>", {"<nodes><real>1</real></nodes>"}},
      {"line 2: <flag> is neither true nor false", {"<flag>yes</flag>", "<flag/>"}},
      {"line 2: <unsigned> is not a whole number from 0 to 4294967295",
       {"<unsigned>-1</unsigned>", "<unsigned>4294967296</unsigned>", "<unsigned>99999999999999999999</unsigned>"}},
      {"line 2: <short> is not a whole number from 0 to 65535", {"<short>65536</short>"}},
      {"line 2: <int> is not a whole number", {"<int>1.5</int>", "<int>+-1</int>", "<int>1 2</int>", "<int/>"}},
      {"line 2: four numbers that are no orientation",
       {"<frame><orientation>0 0 0 0</orientation></frame>", "<frame><orientation>nan 0 0 1</orientation></frame>"}},
      {"line 4: a key stands there twice", {"<map>\n<entry><key>a</key></entry>\n<entry><key>a</key></entry></map>"}},
      {"line 2: an element other than <entry>", {"<map><item/></map>"}},
      {"line 2: a key that is not a number", {"<table><entry><key>nan</key></entry></table>"}},
      {"line 2: '&' before no character or entity",
       {"<text>&lol;</text>", "<text>a & b</text>", "<text>&#0;</text>", "<text>&#xD800;</text>",
        "<text>&#x110000;</text>", "<text>&#99999999999;</text>", "<text>&#x;</text>", "<node name='&#1;'/>"}},
      {"line 3: a byte that is no character of XML", {"<text>\n\x01</text>"}},
      {"line 2: a byte that is no character of XML", {"<text>\xC0\xAF</text>", std::string("<text>\0</text>", 14)}}};
  for (auto const& [message, elements] : theElements)
    for (std::string const& element : elements) expectRefused(inZoo(element), message);
}

TEST(XmlDocument, RefusesWhatIsNoDocument) {
  std::size_t const deep = 100000;
  std::string const nodes = repeated("<node>", deep) + repeated("</node>", deep);
  Refusals const theDocuments = {
      {"no element", {"", " \n", "<!-- nothing -->"}},
      {"text outside the root element", {"text", "<zoo/>\ntext", "text<zoo/>"}},
      {"a second root element", {"<zoo/><zoo/>"}},
      {"line 2: ", {"<zoo>\n<real>1</real>", "<zoo>\n<real>1</int>\n</zoo>"}},
      {"line 3: ", {"<zoo>\n\n<"}},
      {"line ", {"<zoo><!-- \n"}},
      {"line 1: a byte that is no character of XML", {"\xFF\xFE<\0z\0o\0o\0/\0>\0"}},
      {"line 2: '&' before no character or entity",
       {"<!DOCTYPE zoo [<!ENTITY l \"lol\"><!ENTITY m \"&l;&l;&l;&l;\">]>\n<zoo><text>&m;</text></zoo>"}},
      {"elements nested more than 256 deep", {nodes, "<zoo>" + nodes + "</zoo>"}},
      {"line 1: ", {repeated("<node>", deep)}},
      {"more elements and attributes", {"<zoo>" + repeated("<a/>", ZuXmlReader::m_theMaximumMarkup) + "</zoo>"}}};
  for (auto const& [message, documents] : theDocuments)
    for (std::string const& document : documents) expectRefused(document, message);
}

TEST(XmlDocument, TakesTheSameValueInOtherWords) {
  std::pair<std::string, std::string> const theCases[] = {
      {"<real>5</real>", "<real> +5.\t</real>"},
      {"<real>0.5</real>", "<real>&#46;<!-- half -->5</real>"},
      {"<int>7</int>", "<int>\r\n+7 </int>"},
      {"<flag>true</flag>", "<flag> 1 </flag>"},
      {"<vector>1 2 3</vector>", "<vector>\n1e0\r\n2.0\t3</vector>"},
      {"<text>a&lt;b</text>", "<text><![CDATA[a<b]]></text>"},
      {"<text>a&amp;lt;\xC3\xA9&quot;'</text>", "<text>a&#38;lt;&#xe9;\"&apos;</text>"},
      {"<text>a  b</text>", "<text>a <!-- and -->&#32;b</text>"},
      {"<text>a\nb</text>", "<text>a\r\nb</text>"},
      {"<node name=\"a b\"><weight>2</weight></node>",
       "<node kind='other' name='a\nb'><unit>g</unit><weight>2</weight></node>"},
      {"<node/>", "<node xmlns='http://a.b' xmlns:x='y' x:name='z'><!-- nothing --></node>"},
      {"<frame/>", "<frame><orientation>2 0 0 0</orientation></frame>"},
      {"<node><node><weight>3</weight></node></node>", "<node><node><unit/><weight>3</weight></node>\n</node>"}};
  for (auto const& [element, inOtherWords] : theCases) {
    SCOPED_TRACE(inOtherWords);
    ZuXmlBaseVariableCompoundType first = zoo(), second = zoo();
    ASSERT_TRUE(first.readFromBuffer(inZoo(element)));
    ASSERT_TRUE(second.readFromBuffer("\xEF\xBB\xBF<?xml version='1.0'?><!DOCTYPE zoo SYSTEM 'zoo.dtd'>" +
                                      inZoo(inOtherWords) + "<!-- end -->"));
    EXPECT_TRUE(first == second);
    EXPECT_EQ(documentOf(first), documentOf(second));  // also where members are only written
  }
}

TEST(XmlDocument, KeepsEveryBitOfEveryDouble) {
  constexpr std::size_t theCount = 100002;
  std::mt19937_64 engine(97);
  std::vector<std::uint64_t> bits(theCount);
  for (std::uint64_t& pattern : bits) pattern = engine();
  double const special[] = {0.0,  -0.0,     DBL_MAX,   -DBL_MAX, DBL_MIN, 2 * DBL_MIN - 5e-324, 5e-324, -5e-324, 0.1,
                            1e23, HUGE_VAL, -HUGE_VAL, NAN,      -NAN};
  std::memcpy(bits.data(), special, sizeof special);
  bits[20] = 0x7FF0000000000001U;  // a signalling NaN with the smallest payload
  bits[21] = 0xFFFFFFFFFFFFFFFFU;
  ZuXmlVectorVector list;
  list.resize(theCount / 3);
  std::memcpy(static_cast<void*>(list.data()), bits.data(), theCount * sizeof(double));
  ZuXmlVectorVector readBack;
  ASSERT_TRUE(readBack.readFromBuffer(documentOf(list)));
  ASSERT_EQ(readBack.size(), list.size());
  EXPECT_EQ(std::memcmp(readBack.data(), bits.data(), theCount * sizeof(double)), 0);
}

TEST(XmlDocument, KeepsEveryStringThatXmlCanCarryAndRefusesTheOthers) {
  using namespace std::string_literals;
  for (char const* text : {"", " ", "\n", "\t \r\n\r", " a ", "a\rb", "<&>\"'", "]]>", "&amp;", "&#13;", "<!-- -->",
                           "\xC3\xA9\xE2\x82\xAC\xF0\x9F\xA4\x96", "\xEF\xBF\xBD", "\x7F"}) {
    Node node, readBack;
    node.name = std::string(text);
    ASSERT_TRUE(readBack.readFromBuffer(documentOf(node))) << text;
    EXPECT_EQ(readBack.name.value(), text);
    Text elementBack(std::string("other"));
    ASSERT_TRUE(elementBack.readFromBuffer(documentOf(node.name))) << text;
    EXPECT_EQ(elementBack.value(), text);
  }
  for (std::string const& text : {"\x01"s, "a\0b"s, "\xFF"s, "\xC3"s, "\xC0\xAF"s, "\xED\xA0\x80"s, "\xEF\xBF\xBF"s,
                                  "\xF4\x90\x80\x80"s, "long enough \x1F to hide"s}) {
    PrintSink sink;
    std::string buffer = "old";
    EXPECT_FALSE(Text(text).writeToBuffer(buffer, "text"));
    EXPECT_TRUE(saysOnce(sink, "XML can't carry the byte 0x")) << text;
    EXPECT_EQ(buffer, "old");
  }
}

TEST(XmlDocument, IsNotWrittenWhenItCouldNotBeRead) {
  std::string buffer;
  for (char const* root : {"", "a b", "1a", "x:a", "a<"}) {
    PrintSink sink;
    EXPECT_FALSE(Real(1.0).writeToBuffer(buffer, root));
    EXPECT_EQ(sink.messages().size(), 1U) << root;
  }
  // The innermost weight stands one deeper than its node.
  for (unsigned int const nodes : {255U, 256U, 5000U}) {
    Node chain;
    for (unsigned int i = 1; i < nodes; ++i) {
      std::vector<Node> inner(1);
      inner[0].inner.swap(chain.inner);
      chain.inner.swap(inner);
    }
    PrintSink sink;
    bool const fits = nodes < ZuXmlReader::m_theMaximumNesting;
    EXPECT_EQ(chain.writeToBuffer(buffer, "node") && Node().readFromBuffer(buffer), fits) << nodes;
    EXPECT_EQ(sink.messages().size(), fits ? 0U : 1U) << nodes;
  }
}

TEST(XmlDocument, TellsWhatItHeld) {
  Node node = Node::testObject();
  ASSERT_TRUE(!node.specified() && node.readFromBuffer("<node name='n'/>"));
  EXPECT_TRUE(node.specified() && node.name.specified() && !node.weight.specified() && node.inner.empty());
  EXPECT_FALSE(node.equalsDefault());
  ASSERT_TRUE(node.readFromBuffer("<node><weight>0</weight></node>"));
  EXPECT_TRUE(!node.name.specified() && node.weight.specified() && node.equalsDefault());
  ZuXmlBaseVariableCompoundType container = zoo();
  ASSERT_TRUE(container.readFromBuffer("<zoo><real>1</real></zoo>"));
  EXPECT_TRUE(container.element(0)->specified());
}

TEST(XmlCompoundType, BuildsItsTablesOnFirstUseOrByXmlInitAndNeverCopiesThem) {
  ZuXmlPairType<ZuXmlPairType<Real, Real>, ZuXmlVectorType<Node>> pair;
  pair.second().resize(1);
  EXPECT_TRUE(!pair.xmlInitialized() && !pair.hasAttributes() && pair.specialDescriptorMap().empty());
  pair.xmlInit();
  pair.createComponentMap();
  EXPECT_EQ(pair.componentMap().components().size(), 2U);
  EXPECT_TRUE(pair.xmlInitialized() && pair.first().xmlInitialized() && pair.second()[0].xmlInitialized());
  auto const copy = pair;
  EXPECT_FALSE(copy.xmlInitialized());
  documentOf(copy);
  EXPECT_TRUE(copy.xmlInitialized());
  pair = copy;
  EXPECT_FALSE(pair.xmlInitialized());
}

TEST(XmlObjectVisitor, SeesEveryObjectBeforeItsComponentsAndMayPassThemOver) {
  struct Recorder : ZuXmlObjectVisitor {
    bool visit(ZuXmlObject& object) override {
      bool const isPair = dynamic_cast<ZuXmlPairType<Text, ZuXmlVector>*>(&object) != nullptr;
      seen += isPair ? "pair(" : object.isBasicType() ? "v" : "(";
      return intoPairs || !isPair;
    }
    void leave(ZuXmlObject& object) override { seen += object.isBasicType() ? "" : ")"; }
    bool intoPairs = true;
    std::string seen;
  };
  ZuXmlBaseVariableCompoundType container = zoo();
  ASSERT_TRUE(container.readFromBuffer(
      "<zoo><real>1</real><pair/><nodes><node/></nodes><map><entry><key>k</key></entry></map></zoo>"));
  Recorder all, some;
  some.intoPairs = false;
  for (ZuXmlObjectVisitor* const visitor : {&all, &some, static_cast<Recorder*>(nullptr)}) container.accept(visitor);
  EXPECT_EQ(all.seen, "(vpair(vv)((vvvv))((vvvv)))");
  EXPECT_EQ(some.seen, "(vpair(((vvvv))((vvvv)))");
}

TEST(XmlContainers, DoWhatTheirNamesSay) {
  ZuXmlMapType<Real, Text> map;
  map.add(2.0, std::string("two"));
  map.add(1.0, std::string("one"));
  map.add(2.0, std::string("zwei"));
  Text text(std::string("old"));
  unsigned int index = 7;
  EXPECT_TRUE(map.lookup(2.0, text) && map.keyIndex(2.0, index) && text.value() == "zwei" && index == 1U);
  EXPECT_FALSE(map.lookup(3.0, text) || map.lookupPointer(3.0) != nullptr || map.keyIndex(3.0, index));
  PrintSink sink;
  map.add(std::nan(""), Text());
  EXPECT_TRUE(map.size() == 2U && sink.messages().size() == 1U);
  ZuXmlVectorType<Real> list;
  list.leftRotate(3);  // of nothing
  for (double const item : {0.0, 1.0, 2.0, 3.0}) list.pushBack(item);
  list.leftRotate(5);
  EXPECT_TRUE(list[0] == Real(1.0) && list[3] == Real(0.0));
}
