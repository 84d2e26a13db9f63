#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "controls/look.h"

namespace quarnel {

// How a leaf looks, where its control leaves a choice.
enum class Role {
  kPlain,
  kTitle,    // the largest text of a page
  kHeading,  // above a group
  kStatus,   // a heading of any length, which may be cut in its middle
  kStrong,   // a name that its value follows
  kMuted,    // less important than its surroundings
  kFigure,   // a number that is read from afar
  kPrimary,  // the button that most users want
  kQuiet,    // a button without a frame
  kTab,      // one of the tab strip
  kLink,
  kPath,     // a long text that may be cut in its middle
  kWrapped,  // a text of several lines
};

// Whether a control is visible, as a condition.
struct ShownWhile {
  std::string control;
  bool visible;
};

// What a form looks like: boxes in boxes, whose leaves name controls. Nothing here is a length;
// those stand in metrics.h.
struct Layout {
  enum class Kind {
    kControl,  // shows the control `name`
    kColumn,
    kRow,
    kGrid,     // `columns` across
    kCard,     // a column on a surface of its own
    kScroll,   // a column that scrolls when it is higher than its place
    kSplit,    // two boxes, one above the other, with a sash between them
    kText,     // the fixed text `text`
    kPicture,  // the fixed picture `icon`
    kSpring,   // takes the room that is left
    kRest,     // the visible controls of the form that stand nowhere else
  };
  Kind kind = Kind::kControl;
  std::string name = {};
  std::string text = {};       // caption of a control that has none of its own, or none now
  std::string spoken = {};     // what a picture says to those who cannot see it
  std::string state = {};      // the control whose value a screen reader says behind the name
  std::string_view icon = {};  // an icon's name
  int iconSize = 0;
  Role role = Role::kPlain;
  int columns = 0;
  int gap = 0;
  int padding = 0;
  int grow = 0;         // share of the room that is left along the box
  bool narrow = false;  // takes no more than its own width across the box
  bool centred = false;
  bool ticks = false;   // rows have check boxes
  int fileColumn = -1;  // of the paths of files, whose types' pictures stand before the rows
  // Icons before the rows, by the number of the picture that a row has.
  std::vector<std::string_view> pictures = {};
  // Words for what a row's look tells, in a column of their own: who cannot see it reads them.
  std::vector<std::pair<Look, std::string_view>> states = {};
  // Titles of columns that the control leaves without one, or hides.
  std::vector<std::pair<size_t, std::string>> headings = {};
  int width = 0;  // at least this wide, or high
  int height = 0;
  std::vector<ShownWhile> shownWhile = {};  // a box is there while all of these hold
  std::vector<std::pair<std::string, std::string>> menu = {};  // context menu: control, text
  std::vector<Layout> items = {};

  Layout&& Grow(int share = 1) && { return grow = share, std::move(*this); }
  Layout&& Narrow() && { return narrow = true, std::move(*this); }
  Layout&& Centred() && { return centred = true, std::move(*this); }
  Layout&& Gap(int pixels) && { return gap = pixels, std::move(*this); }
  Layout&& Padding(int pixels) && { return padding = pixels, std::move(*this); }
  Layout&& As(Role wanted) && { return role = wanted, std::move(*this); }
  Layout&& Called(std::string_view caption) && { return text = caption, std::move(*this); }
  Layout&& Spoken(std::string_view words) && { return spoken = words, std::move(*this); }
  Layout&& SaidWith(std::string_view control) && { return state = control, std::move(*this); }
  Layout&& With(std::string_view iconName, int size = 0) && {
    return icon = iconName, iconSize = size, std::move(*this);
  }
  Layout&& Ticks() && { return ticks = true, std::move(*this); }
  Layout&& FilesIn(int column) && { return fileColumn = column, std::move(*this); }
  Layout&& Pictures(std::vector<std::string_view> icons) && {
    return pictures = std::move(icons), std::move(*this);
  }
  Layout&& States(std::vector<std::pair<Look, std::string_view>> words) && {
    return states = std::move(words), std::move(*this);
  }
  Layout&& Heading(size_t column, std::string_view title) && {
    return headings.emplace_back(column, title), std::move(*this);
  }
  Layout&& Wide(int pixels) && { return width = pixels, std::move(*this); }
  Layout&& High(int pixels) && { return height = pixels, std::move(*this); }
  // The box is there while the control `control` is visible, or while it is not.
  Layout&& On(std::string_view control) && {
    return shownWhile.push_back({std::string(control), true}), std::move(*this);
  }
  Layout&& Unless(std::string_view control) && {
    return shownWhile.push_back({std::string(control), false}), std::move(*this);
  }
  Layout&& Menu(std::vector<std::pair<std::string, std::string>> entries) && {
    return menu = std::move(entries), std::move(*this);
  }
};

// The title that the layout gives a column; `own` where it gives none.
std::string HeadingOf(const Layout& layout, size_t column, const std::string& own);

Layout Put(std::string_view control);
Layout Text(std::string_view text);
Layout Picture(std::string_view icon, int size);
Layout Column(std::vector<Layout> items);
Layout Row(std::vector<Layout> items);
Layout Grid(int columns, std::vector<Layout> items);
Layout Card(std::string_view heading, std::vector<Layout> items);
Layout Scroll(std::vector<Layout> items);
Layout Split(Layout above, Layout below);
Layout Spring();
Layout Rest();

// A menu of the menu bar: the control with its title, and its entries; an empty name is a line.
struct MenuLayout {
  std::string title;
  std::vector<std::string> entries;
};

enum class WindowKind {
  kMain,    // the frame that users know as the program
  kDialog,  // of the size of its content
  kSheet,   // a dialog that can be resized
  kPopup,   // borderless, on top of all, placed by the form itself
  kSplash,  // borderless, in the middle of the screen
};

struct FormLayout {
  std::string_view form;
  WindowKind kind = WindowKind::kDialog;
  Layout content;
  std::vector<MenuLayout> menus = {};
  // The buttons that Enter and Escape stand for.
  std::string_view defaultButton = {};
  std::string_view cancelButton = {};
  // These take the keyboard when they come onto the screen, and from what leaves it.
  std::vector<std::string_view> keyboard = {};
  // The window comes by itself while its user may be typing elsewhere: a plain letter is no answer.
  bool unasked = false;
  // Controls that the window shows in another way or not at all: working memory, counterparts of a
  // control that is shown.
  std::vector<std::string_view> behind = {};
};

// The layout of this form; a plain one is made for a form that has none.
const FormLayout& LayoutOf(std::string_view form);

// The names of the controls that a layout names, wherever it does.
std::vector<std::string> NamesIn(const FormLayout& layout);

// All layouts that were written by hand.
std::span<const FormLayout> WrittenLayouts();

}  // namespace quarnel
