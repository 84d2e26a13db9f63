#pragma once

namespace quarnel {

class CheckBox;
class Form;
class Host;
class ItemTree;
class Label;
class ListView;
class ProgressBar;
class TreeView;

}  // namespace quarnel
