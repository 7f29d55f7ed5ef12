#ifndef VRUTILS_STORAGE_SIDECAR_H
#define VRUTILS_STORAGE_SIDECAR_H

/// @file
/// Companion files of movies.

#include "vrUtils/vrUtilsApi.h"

#include <string>

namespace vrUtils::Storage {

/// Finds the companion file of a movie, whose name follows from the movie's name by a rule.
///
/// The movie's name must match the expression as a whole. `sidecarName` then is filled: `\0` to
/// `\9` stand for the whole name and for the expression's captures, as they are written in the
/// movie's name; what is no capture, or one that took no part, stays. If there is a file or folder
/// of exactly that name, it is the answer. Otherwise the filled name is taken for an expression,
/// and the first entry of the folder that matches it as a whole is the answer; hidden files, system
/// files, folders, links, offline, sparse and encrypted files and names that begin with a dot are
/// none.
///
/// | movie       | expression    | name       | looks for                                     |
/// |-------------|---------------|------------|-----------------------------------------------|
/// | `Clip1.MOV` | `(.*)\.mov`   | `\1.xml`   | `Clip1.xml`, then what matches `Clip1.xml`    |
/// | `Clip1.MOV` | `(.*)\.mov`   | `\1_.*\.xml` | what matches `Clip1_.*\.xml`                |
///
/// Expressions are those of ECMAScript, without regard to the case of the letters A to Z. A name or
/// an expression may be of any length: where the two together ask for more than a gigabyte of
/// stack, that counts as one that cannot be used. How long a match takes is up to the expression.
///
/// Logs, beside `Searching for sidecar file [NAME] in [FOLDER]` and `Found sidecar [PATH]` at level
/// 7:
/// - `Movie file [MOVIE] failed to match regular expression [REGEX]` at level 3
/// - `Failed to parse sidecar regex [REGEX]` at level 3 for an expression that cannot be used, and
///   for anything else that fails; the text is `regex`, also if it was the filled name
/// - `Ambiguous sidecar could be [FIRST] or [OTHER]` at level 4 for each further match
/// - `Failed to find matching sidecar in [FOLDER]` at level 4
///
/// Throws nothing. From any thread. On a thread that is no fiber yet, the work is done on a fiber
/// of its own.
/// @param movieFile matched as it stands: with its folders, if it is given with them
/// @param folder where to look, with its closing backslash
/// @param searchPattern wildcard for the entries that are looked at, such as `*.xml`
/// @return the sidecar's path: `folder` and its name; empty if there is none
VRUTILS_API std::wstring FindSidecarFile(
    std::wstring const& movieFile, std::wstring const& regex, std::wstring const& folder,
    std::wstring const& sidecarName, std::wstring const& searchPattern);

} // namespace vrUtils::Storage

#endif
