#ifndef TESTS_FOUNDATION_PATHSPLITTERMODEL_H
#define TESTS_FOUNDATION_PATHSPLITTERMODEL_H

#include <cstdint>
#include <list>
#include <string>

// The rules of parsing once more, for comparison: every step on its own, in order, on copies of the
// text, with no regard to speed.
class PathSplitterModel {
  public:
    PathSplitterModel(std::wstring const& text, bool isFile);

    std::wstring host() const;
    std::uint32_t port() const;
    std::wstring firstFolder() const;

    std::wstring drive;
    std::wstring dir;
    std::wstring name;
    std::wstring ext;
    std::wstring root;
    std::list<std::wstring> folders;

  private:
    void splitPath(std::wstring const& text);
    std::list<std::wstring> hostAndPort() const;
};

#endif
