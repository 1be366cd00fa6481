// The polymorphic container: its classes, its elements and their plug-ins.
#include "foundation/zuBaseExpressionTreeElement.h"
#include "tests/testValues.h"
#include "tests/xmlSamples.h"

namespace {

/// An element that knows its container.
class Leaf : public ZuXmlClass<Leaf, ZuBaseExpressionTreeElement> {
 public:
  bool operator==(Leaf const&) const { return true; }
  static ZuToken const& classToken() {
    static ZuToken const theToken("leaf");
    return theToken;
  }
  static Leaf testObject() { return {}; }
};

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
  ASSERT_TRUE(container.readFromBuffer("<zoo><leaf/></zoo>"));
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
