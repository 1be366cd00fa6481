// A plug-in library, as a client would write it: a value and a solid of its own.
#include "foundation/zuXmlBaseVariableCompoundType.h"
#include "foundation/zuXmlBasicType.h"
#include "foundation/zuXmlCompoundType.h"
#include "geometry/zuSphere.h"

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

/// A sphere that is twice as large as its document says.
class Balloon : public ZuXmlClass<Balloon, ZuSphere> {
 public:
  double radius() const override { return 2.0 * ZuSphere::radius(); }

  static ZuToken const& classToken() {
    static ZuToken const theToken("balloon");
    return theToken;
  }
  static Balloon testObject() {
    Balloon sample;
    sample.setRadius(0.25);
    return sample;
  }
};

}  // namespace

extern "C" ZU_API void zuRegisterCreators(ZuXmlBaseVariableCompoundType* container) {
  container->registerComponentCreator(Spring::classToken(), &Spring::creator);
  container->registerComponentCreator(Balloon::classToken(), &Balloon::creator);
}
