// Schemas: what they admit and what not; that each class's own documents validate is part of the persistence tests.
#include <gtest/gtest.h>

#include "foundation/zuBaseExpressionTreeElement.h"
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

}  // namespace

TEST(XmlSchema, AdmitsElementsOfEveryClassAtEveryDepth) {
  if (!xmllintIsInstalled()) GTEST_SKIP() << "xmllint is not installed";
  ZuXmlBaseVariableCompoundType container;
  container.registerComponentCreator(Nest<'a'>::classToken(), &Nest<'a'>::creator);
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
