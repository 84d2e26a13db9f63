#pragma once

// The toolkit's headers in one place. On Windows they bring system macros, of which some would
// rename functions and types of ours.

#include <wx/bmpbndl.h>
#include <wx/choice.h>
#include <wx/clipbrd.h>
#include <wx/dataview.h>
#include <wx/datectrl.h>
#include <wx/dateevt.h>
#include <wx/evtloop.h>
#include <wx/generic/statbmpg.h>
#include <wx/html/htmlwin.h>
#include <wx/hyperlink.h>
#include <wx/scrolwin.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/taskbar.h>
#include <wx/textdlg.h>
#include <wx/tglbtn.h>
#include <wx/timectrl.h>
#include <wx/wx.h>

#undef MessageBox
#undef ReplaceFile
