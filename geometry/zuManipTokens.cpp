#include "geometry/zuManipTokens.h"

namespace ZuManip {

ZuToken const ZuLinearToken("linear");
ZuToken const ZuAngularToken("angular");
ZuToken const ZuRow0Token("row0");
ZuToken const ZuRow1Token("row1");
ZuToken const ZuRow2Token("row2");

}  // namespace ZuManip
