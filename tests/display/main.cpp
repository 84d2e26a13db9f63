// The toolkit is set up once for all tests.

#include <gmock/gmock.h>

#include "ui/wx/wx.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleMock(&argc, argv);
  wxApp::SetInstance(new wxApp);
  int own = 1;
  if (!wxEntryStart(own, argv)) {
    // Without a display nothing can be shown.
    constexpr int kSkipped = 77;
    return kSkipped;
  }
  wxTheApp->SetExitOnFrameDelete(false);
  wxIdleEvent::SetMode(wxIDLE_PROCESS_SPECIFIED);
  wxUpdateUIEvent::SetMode(wxUPDATE_UI_PROCESS_SPECIFIED);
  wxInitAllImageHandlers();
  const int result = RUN_ALL_TESTS();
  wxEntryCleanup();
  return result;
}
