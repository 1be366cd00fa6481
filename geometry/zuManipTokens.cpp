#include "geometry/zuManipTokens.h"

namespace ZuManip {

ZuToken const ZuLinearToken("linear");
ZuToken const ZuAngularToken("angular");

}  // namespace ZuManip
