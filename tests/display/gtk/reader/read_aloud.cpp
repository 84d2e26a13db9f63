// Reads a program's windows as a screen reader does, over the bus of assistive programs: one line
// for each thing that shows, with its depth, role, name, states, actions and label, separated by
// tabs.
//
//   read-aloud PROCESS

#include <atspi/atspi.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

std::string Text(gchar* text) {
  std::string result = text == nullptr ? "" : text;
  g_free(text);
  for (char& c : result) {
    if (c == '\t' || c == '\n' || c == '\r') c = ' ';
  }
  return result;
}

std::string StatesOf(AtspiAccessible* thing) {
  struct Named {
    AtspiStateType state;
    const char* name;
  };
  constexpr Named kStates[] = {
      {ATSPI_STATE_FOCUSABLE, "focusable"}, {ATSPI_STATE_FOCUSED, "focused"},
      {ATSPI_STATE_CHECKED, "checked"},     {ATSPI_STATE_CHECKABLE, "checkable"},
      {ATSPI_STATE_PRESSED, "pressed"},     {ATSPI_STATE_SELECTED, "selected"},
      {ATSPI_STATE_EXPANDED, "expanded"},   {ATSPI_STATE_SENSITIVE, "sensitive"},
  };
  AtspiStateSet* set = atspi_accessible_get_state_set(thing);
  std::string states;
  for (const Named& named : kStates) {
    if (atspi_state_set_contains(set, named.state) != 0) states += std::string(named.name) + ' ';
  }
  g_object_unref(set);
  return states;
}

bool Shows(AtspiAccessible* thing) {
  AtspiStateSet* set = atspi_accessible_get_state_set(thing);
  const bool shows = atspi_state_set_contains(set, ATSPI_STATE_VISIBLE) != 0;
  g_object_unref(set);
  return shows;
}

std::string ActionsOf(AtspiAccessible* thing) {
  std::string actions;
  AtspiAction* can = atspi_accessible_get_action_iface(thing);
  const int count = can == nullptr ? 0 : atspi_action_get_n_actions(can, nullptr);
  for (int i = 0; i < count; ++i) {
    actions += Text(atspi_action_get_action_name(can, i, nullptr)) + ' ';
  }
  if (can != nullptr) g_object_unref(can);
  return actions;
}

std::string LabelOf(AtspiAccessible* thing) {
  std::string label;
  GArray* relations = atspi_accessible_get_relation_set(thing, nullptr);
  for (guint i = 0; relations != nullptr && i < relations->len; ++i) {
    AtspiRelation* relation = g_array_index(relations, AtspiRelation*, i);
    if (atspi_relation_get_relation_type(relation) != ATSPI_RELATION_LABELLED_BY) continue;
    AtspiAccessible* by = atspi_relation_get_target(relation, 0);
    label = Text(atspi_accessible_get_name(by, nullptr));
    g_object_unref(by);
  }
  if (relations != nullptr) g_array_free(relations, TRUE);
  return label;
}

void Read(AtspiAccessible* thing, int depth) {
  const std::string role = Text(atspi_accessible_get_role_name(thing, nullptr));
  std::printf("%d\t%s\t%s\t%s\t%s\t%s\n", depth, role.c_str(),
              Text(atspi_accessible_get_name(thing, nullptr)).c_str(), StatesOf(thing).c_str(),
              ActionsOf(thing).c_str(), LabelOf(thing).c_str());
  const int count = atspi_accessible_get_child_count(thing, nullptr);
  for (int i = 0; i < count; ++i) {
    AtspiAccessible* child = atspi_accessible_get_child_at_index(thing, i, nullptr);
    if (child == nullptr) continue;
    if (Shows(child)) Read(child, depth + 1);
    g_object_unref(child);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 || atspi_init() != 0) return 2;
  const guint process = static_cast<guint>(std::strtoul(argv[1], nullptr, 10));
  AtspiAccessible* desktop = atspi_get_desktop(0);
  const int count = atspi_accessible_get_child_count(desktop, nullptr);
  for (int i = 0; i < count; ++i) {
    AtspiAccessible* program = atspi_accessible_get_child_at_index(desktop, i, nullptr);
    if (program == nullptr) continue;
    if (atspi_accessible_get_process_id(program, nullptr) == process) Read(program, 0);
    g_object_unref(program);
  }
  g_object_unref(desktop);
  return 0;
}
