#include "ui/wx/run_window.h"

int main(int /*argc*/, char** argv) {
  // Of the command line the toolkit sees the program's name alone.
  int own = 1;
  wxApp::SetInstance(quarnel::MakeWindowApplication().release());
  return wxEntry(own, argv);
}
