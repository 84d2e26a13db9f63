#pragma once

#include <cstdint>
#include <string>

namespace quarnel {

// The attributes of a file that the host has no place for: hidden, system, archive and temporary.
// They are kept in the extended attribute user.quarnel.attributes as "0x" and hexadecimal digits.
// On a file system without extended attributes they are not kept, and read as none.
uint32_t StoredAttributes(const std::string& hostPath);

// Takes the four bits out of `attributes`. Raises RuntimeError where the file system keeps them but
// could not now.
void StoreAttributes(const std::string& hostPath, uint32_t attributes);

}  // namespace quarnel
