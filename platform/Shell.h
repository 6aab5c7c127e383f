// Starting programs and opening documents, folders and addresses for the user, as a double click would.
//
// Used on the main thread. Nothing is waited for and no handle is kept: what was started goes its own way, also
// after this program has ended.
#pragma once

#include <string>
#include <vector>

namespace vardel {

enum class ShellVerb {
    Open,     // a program is started, anything else is opened by the program that is made for it
    Explore,  // a folder is shown
    Find,     // a search in a folder is offered; on Linux the folder is shown
};

class Shell {
  public:
    virtual ~Shell() = default;

    // The pieces of a user's parameter text: what is put in for a tag stays within the piece. Windows hands a program
    // one text, which is one piece as it stands. Elsewhere a program gets its arguments one by one: the text is split
    // as a Windows command line is, and each argument is a piece.
    virtual std::vector<std::string> ParameterPieces(const std::string& parameters) = 0;

    // Hands `file` (a program, a document, a folder, an address such as "https://...") to the system. The pieces are
    // for a program; a document has no use for them. False when nothing was started, which shows the user nothing.
    virtual bool Execute(ShellVerb verb, const std::string& file, const std::vector<std::string>& pieces) = 0;
};

Shell& SystemShell();

}  // namespace vardel
