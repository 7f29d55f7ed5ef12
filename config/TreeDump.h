#ifndef CONFIG_TREEDUMP_H
#define CONFIG_TREEDUMP_H

#include "config/DumpFile.h"
#include "config/RegistryKey.h"

#include <array>
#include <string>

namespace vrUtils::Registry {

// Writes the keys and values of one tree to a file.
class TreeDump {
  public:
    explicit TreeDump(DumpFile& file) : m_file(file) {}

    // Writes the values of an open key whose header has been written, and then the keys below it.
    // @param prefix the text in front of a subkey's name in its header
    // @return whether every key directly below opened; what does not open further down cuts the
    //         dump short at that place all the same
    bool write(RegistryKey const& key, std::wstring const& prefix);

  private:
    // Every key's name finds room. A value's name that does not is left out.
    static constexpr DWORD nameUnits = 256;
    // Longer data are left out.
    static constexpr DWORD dataBytes = 1024;

    void writeValues(RegistryKey const& key);
    bool writeSubkeys(RegistryKey const& key, std::wstring const& prefix);
    void appendData(DWORD type, DWORD length);
    void appendText(DWORD length);
    void appendNumber(DWORD length);
    void appendBytes(DWORD length);

    DumpFile& m_file;
    std::wstring m_line;
    // Bytes are decimal until the first number has been written, and hexadecimal ever after.
    int m_base = 10;
    // Here and not on the stack, which a deep tree would use up.
    std::array<wchar_t, nameUnits> m_name;
    std::array<BYTE, dataBytes> m_data;
};

} // namespace vrUtils::Registry

#endif
