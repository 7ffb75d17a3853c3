// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/CParameters.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/SDeviceInfo.h>

#include <cstddef>
#include <pugixml.hpp>
#include <string>
#include <string_view>

// The XML form of the camera library's records, shared by camera description files and the
// emulator's world files; docs/camera-description.md describes it.
namespace kiv::cam::xml {

// Where and why reading failed.
struct SError {
    pugi::xml_node node;
    std::string reason;
};

// Text as XML can carry it: valid UTF-8 of characters that XML 1.0 allows. Ill-formed UTF-8
// and the characters XML cannot hold (control characters other than tab, line feed and carriage
// return; U+FFFE and U+FFFF) become U+FFFD, the replacement character. Every text read from a
// file and every text written to one passes through here, so files are read without refusing
// text and always written well-formed.
CString RepairText(std::string_view text);

// Each Write* fills an empty element with the record's fields as child elements.
void WriteParameters(pugi::xml_node element, const CParameters& parameters);
void WriteDevice(pugi::xml_node element, const SDeviceInfo& device);
void WriteCamera(pugi::xml_node element, const SCameraInfo& camera);

// Each Read* sets the fields that the element holds and leaves the others as they are; unknown
// elements and attributes are ignored. On a malformed value it gives false and fills error, and
// the record, read in part, is to be dropped (ReadParameters leaves the collection as it was).
bool ReadParameters(pugi::xml_node element, CParameters& parameters, SError& error);
bool ReadDevice(pugi::xml_node element, SDeviceInfo& device, SError& error);
bool ReadCamera(pugi::xml_node element, SCameraInfo& camera, SError& error);

// The line (from 1) of a byte offset into a text, or of a node in the text it was parsed from;
// 0 when the offset lies outside the text.
int LineAt(std::ptrdiff_t offset, const char* text, std::size_t size);
int LineOf(pugi::xml_node node, const char* text, std::size_t size);

} // namespace kiv::cam::xml
