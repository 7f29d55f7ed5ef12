#include "vrUtils/UtilValue.h"

#include "foundation/FailureCodes.h"

namespace vrUtils {

namespace {

// The place of this failure is fixed, so that it reads the same in every release.
constexpr std::uint32_t unsetValueLine = 58;

} // namespace

void throwUnsetValue() {
    throw vrUnsetValueException("UtilValue", unsetValueLine, L"Value not set", GeneralFailure);
}

} // namespace vrUtils
