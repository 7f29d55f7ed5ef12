#ifndef VRUTILS_XSLT_H
#define VRUTILS_XSLT_H

/// @file
/// XML files made into text by stylesheets.

#include "vrUtils/vrUtilsApi.h"

#include <cstdint>
#include <string>

namespace vrUtils::XSLT {

/// The one code of every failure of `XSLTtoString`.
inline constexpr auto TransformFailed = static_cast<std::int32_t>(0x80E0609A);

/// Applies a stylesheet to an XML file, by the platform's XML component. Nothing is validated, and
/// nothing outside the two files is read.
///
/// A file that is missing or that the parser rejects is logged as `XSLT transform failed : PATH`,
/// a line feed and the parser's reason, at level 7.
///
/// Blocks until the text is made. From any thread: the call enters COM and leaves it again, where
/// the thread is not in an apartment of the other kind already; it works in either kind.
/// @param result receives the text in the system's ANSI code page, with the system's own character
///        for what the page lacks; may be empty. Not null; untouched on failure
/// @return not negative on success; `TransformFailed`
/// @throws std::bad_alloc if the text cannot be converted for want of memory; COM is then not left
VRUTILS_API std::int32_t
XSLTtoString(std::wstring const& xmlPath, std::wstring const& xslPath, std::string* result);

} // namespace vrUtils::XSLT

#endif
