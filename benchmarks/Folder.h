#ifndef BENCHMARKS_FOLDER_H
#define BENCHMARKS_FOLDER_H

// Where the programs that measure files keep theirs.

#include <filesystem>
#include <string>

namespace benchmarks {

// A file of this name in the folder that VRUTILS_BENCHMARK_FOLDER tells, or in the temporary one.
inline std::wstring fileNamed(wchar_t const* name) {
    auto const* const told = _wgetenv(L"VRUTILS_BENCHMARK_FOLDER");
    auto const folder = told ? std::filesystem::path(told) : std::filesystem::temp_directory_path();
    return (folder / name).native();
}

} // namespace benchmarks

#endif
