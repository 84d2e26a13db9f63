#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace quarnel {

// The command line of quarnel-machine, without the program's name:
//
//   create DIR [--user NAME] [--sid SID] [--family nt|9x]   makes a machine folder
//   path DIR 'C:\...'              prints the host path, whether or not something stands there
//   reg import DIR FILE [KEY]      takes a .reg file over, or what it has of KEY and below
//   reg export DIR FILE [KEY]      writes KEY with all below it, or the whole registry
//   reg query DIR KEY [VALUE]      prints a value, or what a key holds in the form of .reg files
//   sample [DIR]                   plants harmless threats and the signatures that find them;
//                                  prints kind, threat and trace of each, separated by tabs
//
// A text is printed as it is and a REG_DWORD in decimal; other values print as in .reg files. KEY
// is written like HKEY_LOCAL_MACHINE\Software\X or HKLM\Software\X. Where `sample` is given no
// DIR it takes the current folder. On Windows DIR is ".", the running system; it has neither
// `create` nor `path`.
//
// Returns the exit code: 0, or 1 for a failure or a bad call (one line on `errors`).
int RunMachineTool(const std::vector<std::string>& arguments, std::ostream& out,
                   std::ostream& errors);

}  // namespace quarnel
