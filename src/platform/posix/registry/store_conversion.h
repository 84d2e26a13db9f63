#pragma once

#include "platform/posix/registry/sqlite.h"

namespace quarnel {

// Brings a store whose names were folded for ASCII letters only to the folding of all letters; to
// be run in a transaction. Of keys or values that then collide one takes the folded name: the one
// that has it already, else the first by its name. The others become its twins, see sqlite_store.h,
// so that each is still found by its own name.
void FoldNamesWhole(Database& database);

}  // namespace quarnel
