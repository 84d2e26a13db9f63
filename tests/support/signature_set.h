#pragma once

#include <gtest/gtest.h>

#include <string>

#include "core/paths.h"
#include "signatures/compiler.h"

namespace quarnel {

// Puts a set of signatures where the program reads it.
inline void InstallSet(Files& files, Machine& machine, const CompiledSet& set) {
  for (const SourceError& error : set.errors) ADD_FAILURE() << error.Text();
  for (const CompiledFile& file : set.files) {
    WriteWholeFile(files, DataFolder(machine) + file.name, file.bytes);
  }
}

// The same with the lists that the program asks for when it starts.
inline void InstallProgramData(Files& files, Machine& machine, SignatureSources sources) {
  // A phase without signatures would leave every scan incomplete.
  if (sources.blockedCookies.empty()) sources.blockedCookies = "*.example\n";
  InstallSet(files, machine, CompileSet(sources));
  for (const char* name : {"QNLList.dll", "QNLCritProc.dll"}) {
    WriteWholeFile(files, DataFolder(machine) + name, "list\r\n");
  }
}

}  // namespace quarnel
