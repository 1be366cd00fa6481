// The polymorphic container: its classes, its elements, their plug-ins, and their schema.
#include "foundation/zuBaseExpressionTreeElement.h"
#include "tests/testValues.h"
#include "tests/xmlSamples.h"
#include "tests/xmlSchemaCheck.h"

namespace {

/// One of two classes of elements that hold, one in the other, elements of any class of their container.
template <char Name>
class Nest : public ZuXmlClass<Nest<Name>, ZuBaseExpressionTreeElement> {
 public:
  bool operator==(Nest const&) const { return true; }
  void createSpecialDescriptorMap() override {
    ZuBaseExpressionTreeElement::createSpecialDescriptorMap();
    if (this->container() == nullptr) return;
    for (auto const& [name, creator] : this->container()->creatorMap()) this->addSpecialDescriptor(name, creator);
  }
  static ZuToken const& classToken() {
    static ZuToken const theToken(std::string(1, Name));
    return theToken;
  }
  static Nest testObject() { return {}; }
};

using Leaf = Nest<'a'>;

ZuBaseExpressionTreeElement const& leafOf(ZuXmlBaseVariableCompoundType const& container) {
  return dynamic_cast<ZuBaseExpressionTreeElement const&>(*container.element(0));
}

}  // namespace

TEST(XmlContainer, LoadsClassesFromPlugIns) {
  ZuXmlBaseVariableCompoundType container = zoo();
  container.setAddLibraries({"/nowhere.so", ZU_TEST_LIBRARY_WITHOUT_CLASSES, "", ZU_TEST_PLUGIN});
  PrintSink sink;
  EXPECT_FALSE(container.processLibraries());
  ASSERT_EQ(sink.take().size(), 3U);
  EXPECT_EQ(container.addLibraries().size(), 4U);
  ASSERT_TRUE(container.readFromBuffer("<zoo><spring><stiffness>2.5</stiffness></spring><real>1</real></zoo>"));
  EXPECT_TRUE(container.element(0)->selfTest());
  ZuXmlBaseVariableCompoundType copy = container;
  ASSERT_TRUE(copy.readFromBuffer(documentOf(container)));
  EXPECT_TRUE(copy == container);
  container.setAddLibraries({ZU_TEST_PLUGIN});
  EXPECT_TRUE(container.processLibraries());
  EXPECT_FALSE(zoo().readFromBuffer(documentOf(container)));  // another container has not the class
  EXPECT_EQ(sink.messages().size(), 1U);
}

TEST(XmlContainer, MakesObjectsOfTheRegisteredClassesAlone) {
  ZuXmlBaseVariableCompoundType container = zoo();
  std::unique_ptr<ZuXmlObject> const node(container.newObjectFromToken("node"));
  EXPECT_TRUE(node != nullptr && node->equality(&Node::nullObject()));
  EXPECT_EQ(container.newObjectFromToken("none"), nullptr);
  container.registerComponentCreator("node", nullptr);
  EXPECT_EQ(container.newObjectFromToken("node"), nullptr);
  PrintSink sink;
  EXPECT_FALSE(container.readFromBuffer("<zoo><node/></zoo>"));
  EXPECT_EQ(container.element(0), nullptr);
  EXPECT_EQ(sink.messages().size(), 2U);
}

TEST(XmlContainer, IsKnownToTheElementsThatItOwnsAndToNoCopyOfThem) {
  ZuXmlBaseVariableCompoundType container;
  container.registerComponentCreator(Leaf::classToken(), &Leaf::creator);
  ASSERT_TRUE(container.readFromBuffer("<zoo><a/></zoo>"));
  EXPECT_EQ(leafOf(container).container(), &container);
  ZuXmlBaseVariableCompoundType copy(container);
  EXPECT_EQ(leafOf(copy).container(), &copy);
  copy = container;
  EXPECT_TRUE(leafOf(copy).container() == &copy && leafOf(container).container() == &container);
  Leaf leaf(dynamic_cast<Leaf const&>(leafOf(container)));
  EXPECT_EQ(leaf.container(), nullptr);
  leaf.setContainer(&copy);
  leaf = dynamic_cast<Leaf const&>(leafOf(container));
  EXPECT_EQ(leaf.container(), &copy);
  EXPECT_EQ(leaf.token(), Leaf::classToken());
}

// What schemas admit and what not; that the documents of each class validate is part of the persistence tests.

TEST(XmlSchema, AdmitsElementsOfEveryClassAtEveryDepth) {
  if (!xmllintIsInstalled()) GTEST_SKIP() << "xmllint is not installed";
  ZuXmlBaseVariableCompoundType container;
  container.registerComponentCreator(Leaf::classToken(), &Leaf::creator);
  container.registerComponentCreator(Nest<'b'>::classToken(), &Nest<'b'>::creator);
  EXPECT_EQ(schemaFault(container, "<root><a><b><a><b/></a></b></a></root>"), "");
  EXPECT_NE(schemaFault(container, "<root><a><b><c/></b></a></root>"), "");
}

TEST(XmlSchema, AdmitsWhatIsWrittenAndNothingThatIsNoValue) {
  if (!xmllintIsInstalled()) GTEST_SKIP() << "xmllint is not installed";
  ZuXmlBaseVariableCompoundType container = zoo();
  ASSERT_TRUE(container.readFromBuffer(
      "<zoo><table><entry><key>1</key><value>-nan(0x1)</value></entry></table><points><vector>1e300 -0 5e-324</vector>"
      "<vector>inf -inf nan</vector></points><map><entry><key> k </key><value/></entry></map><node name='n'><weight>.5"
      "</weight><node><node/></node></node><nodes><node/></nodes><text>&lt;</text><flag>true</flag><pair/></zoo>"));
  std::string document;
  ASSERT_TRUE(container.writeToBuffer(document, "root"));
  EXPECT_EQ(schemaFault(container, document), "");
  for (char const* element :
       {"<unknown/>", "<real>1e</real>", "<real>INF</real>", "<vector>1 2</vector>", "<unsigned>-1</unsigned>",
        "<node size='1'/>", "<node><node><other/></node></node>", "<table><entry><key>a</key></entry></table>",
        "<frame><orientation>1 2 3</orientation></frame>", "<points><point/></points>"}) {
    EXPECT_NE(schemaFault(container, "<root>" + std::string(element) + "</root>"), "") << element;
  }
}
