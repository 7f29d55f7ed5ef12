#ifndef CONFIG_DUMPFILE_H
#define CONFIG_DUMPFILE_H

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace vrUtils::Registry {

// The text file that a dump goes to: one byte for each character, each line feed with a carriage
// return in front. It is a stream of our own because the standard library's drops what it has not
// yet written at the first character that has no byte.
//
// What cannot be written is lost without a word, and so is all that follows it.
class DumpFile {
  public:
    // Makes the file or empties it.
    explicit DumpFile(std::wstring const& path);

    void write(std::wstring_view text);

    // Nothing can be written afterwards.
    void close() noexcept;

  private:
    struct Closer {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };

    // Null once something could not be written.
    std::unique_ptr<std::FILE, Closer> m_file;
    std::string m_bytes;
};

} // namespace vrUtils::Registry

#endif
