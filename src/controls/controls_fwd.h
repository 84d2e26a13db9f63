#pragma once

namespace quarnel {

class CToolTip;
class CheckBox;
class DatePicker;
class Form;
class Host;
class ItemTree;
class Label;
class ListView;
class ProgressBar;
class Timer;
class TrayIcon;
class TreeView;

}  // namespace quarnel
