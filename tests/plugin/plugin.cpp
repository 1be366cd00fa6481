// A plug-in library, as a client would write it: one class of its own.
#include "foundation/zuXmlBaseVariableCompoundType.h"
#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlCompoundType.h"

namespace {

class Spring : public ZuXmlClass<Spring, ZuXmlCompoundType> {
 public:
  bool operator==(Spring const& other) const { return m_Stiffness == other.m_Stiffness; }
  void registerComponents() override { registerComponent("stiffness", &m_Stiffness); }

  static ZuToken const& classToken() {
    static ZuToken const theToken("spring");
    return theToken;
  }
  static Spring testObject() {
    Spring sample;
    sample.m_Stiffness = 250.0;
    return sample;
  }

 private:
  ZuXmlBasicType<double> m_Stiffness;
};

}  // namespace

extern "C" ZU_API void zuRegisterCreators(ZuXmlBaseVariableCompoundType* container) {
  container->registerComponentCreator(Spring::classToken(), &Spring::creator);
}
