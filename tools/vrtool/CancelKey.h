#ifndef TOOLS_VRTOOL_CANCELKEY_H
#define TOOLS_VRTOOL_CANCELKEY_H

#include <chrono>

// Ctrl-C and Ctrl-Break, for as long as an object lives: they no longer end this program, but are
// kept here for it to ask. Programs that share the console receive them all the same. One object at
// a time.
class CancelKey {
  public:
    // @throws std::system_error if the platform has nothing to wait on
    CancelKey();
    CancelKey(CancelKey const&) = delete;
    CancelKey& operator=(CancelKey const&) = delete;
    ~CancelKey();

    // Whether it was pressed.
    bool wasPressed() const { return comesWithin(std::chrono::milliseconds(0)); }

    // Waits for it.
    // @return whether it was pressed within the time
    bool comesWithin(std::chrono::milliseconds time) const;

    // An event that is signalled once it was.
    void* event() const { return m_pressed; }

  private:
    void* m_pressed;
};

#endif
