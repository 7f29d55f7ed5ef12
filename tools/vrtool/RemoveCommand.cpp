#include "tools/vrtool/RemoveCommand.h"

#include "tools/vrtool/Answers.h"
#include "tools/vrtool/CancelKey.h"
#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Platform.h"
#include "tools/vrtool/RecoveryCopy.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files/FileQueries.h"
#include "vrUtils/Storage/Exceptions.h"
#include "vrUtils/Storage/RecoverableFileDeleter.h"

#include <exception>
#include <memory>

namespace Storage = vrUtils::Storage;
using vrUtils::Files::FileExists;

namespace {

constexpr char removeExplanation[] =
    R"(Asks first, and goes on at "yes" only. Then the file is copied into the folder
"Recovery\" beside it and deleted, and vrtool waits: "done" makes that final,
"undo" puts the file back. So do the end of the input and Ctrl-C: what nobody
has confirmed stays. The copy goes at the end, unless the folder was there
before. If vrtool itself is killed while it waits, the copy stays.

Answers are lines on standard input, and may come from a file or a pipe.

Ends with 0 if the file is gone; 1 if it could not be removed or put back; 2
if the arguments are wrong; 4 if it was left or put back as the user wanted.

Example:
  vrtool remove C:\Media\clip.mxf --recoverable)";

// In quotes, for messages.
std::string quotedText(std::wstring const& path) { return '"' + toUtf8(path) + '"'; }

class Removal {
  public:
    Removal(Console& console, std::wstring const& path)
        : m_console(console),
          m_path(path),
          m_copy(recoveryCopyOf(vr::Path::file(path))),
          m_copyPath(m_copy.str()),
          m_deleter(
              std::make_unique<Storage::RecoverableFileDeleter>(vr::Path::file(path), L"vrtool")) {}

    int run();

  private:
    bool isPossible() const;
    bool isWanted();
    bool remove();
    bool isFinal() noexcept;
    int finish();
    int putBack();
    void end(std::string const& outcome);

    // Asks until one of the two words is the answer.
    // @return whether it was the first; without an answer it was not
    bool answerIs(char const* first, char const* second, std::string const& question) const;

    Console& m_console;
    std::wstring m_path;
    vr::Path m_copy;
    std::wstring m_copyPath;
    std::unique_ptr<Storage::RecoverableFileDeleter> m_deleter;
    CancelKey m_key;
};

int Removal::run() {
    if (!isPossible())
        return ExitCode::failure;
    if (!isWanted())
        return ExitCode::cancelled;
    if (!remove())
        return ExitCode::failure;
    return isFinal() ? finish() : putBack();
}

bool Removal::isPossible() const {
    auto const attributes = GetFileAttributesW(m_path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        m_console.error("vrtool: no such file: " + quotedText(m_path) + '\n');
        return false;
    }
    if (attributes & FILE_ATTRIBUTE_DIRECTORY) {
        m_console.error("vrtool: a folder, which cannot be put back: " + quotedText(m_path) + '\n');
        return false;
    }
    // Somebody's only copy, from a removal that was killed; it would be written over.
    if (FileExists(m_copy)) {
        m_console.error(
            "vrtool: an earlier removal was not finished; its copy is in the way: " +
            quotedText(m_copyPath) + '\n');
        return false;
    }
    return true;
}

bool Removal::isWanted() {
    if (answerIs("yes", "no", "Remove " + quotedText(m_path) + "? yes or no:\n"))
        return true;
    m_console.out("left as it was: " + quotedText(m_path) + '\n');
    return false;
}

bool Removal::remove() {
    try {
        m_deleter->Delete();
        return true;
    } catch (Storage::vrStorageException const& failure) {
        m_console.error(
            "vrtool: not removed: " + quotedText(failure.text()) + ": " +
            toUtf8(systemText(failure.error())) + '\n');
        return false;
    }
}

// From here on the copy is all there is: whatever goes wrong with the user, the file comes back.
bool Removal::isFinal() noexcept {
    try {
        return answerIs(
            "done", "undo",
            "removed; until this ends, a copy is in " + quotedText(m_copyPath) +
                "\ndone to make that final, undo to put the file back:\n");
    } catch (std::exception const& failure) {
        m_console.error(std::string("vrtool: ") + failure.what() + '\n');
        return false;
    }
}

int Removal::finish() {
    end("removed");
    return ExitCode::success;
}

int Removal::putBack() {
    try {
        m_deleter->Recover();
    } catch (Storage::vrStorageException const& failure) {
        // With the deleter would go the only copy.
        static_cast<void>(m_deleter.release());
        m_console.error(
            "vrtool: not put back: " + quotedText(failure.text()) + ": " +
            toUtf8(systemText(failure.error())) + "\nthe file is in " + quotedText(m_copyPath) +
            '\n');
        return ExitCode::failure;
    }
    end("put back");
    return ExitCode::cancelled;
}

// The copy goes, unless its folder was there before.
void Removal::end(std::string const& outcome) {
    m_deleter.reset();
    m_console.out(outcome + ": " + quotedText(m_path) + '\n');
    if (FileExists(m_copy))
        m_console.out("the copy stays: " + quotedText(m_copyPath) + '\n');
}

bool Removal::answerIs(char const* first, char const* second, std::string const& question) const {
    for (;;) {
        m_console.out(question);
        auto const answer = nextAnswer(m_key);
        if (!answer || *answer == second)
            return false;
        if (*answer == first)
            return true;
    }
}

} // namespace

RemoveCommand::RemoveCommand()
    : Command("remove", "Remove a file so that it can be put back", removeExplanation) {}

void RemoveCommand::declare(CLI::App& arguments) {
    m_path = arguments.add_option("PATH")->required();
    m_path->description("A file; in quotes if it holds blanks");
    arguments.add_flag("--recoverable", "Keep a copy while vrtool waits; must be given")
        ->required();
}

int RemoveCommand::run(Console& console) const {
    return Removal(console, fullPath(CommandLine::textOf(*m_path))).run();
}
