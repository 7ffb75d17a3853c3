#pragma once

#include <kivcam/CParameters.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/SDeviceInfo.h>

#include <cstddef>
#include <pugixml.hpp>
#include <string>

// The XML form of the camera library's records, shared by camera description files and the
// emulator's world files; docs/camera-description.md describes it.
namespace kiv::cam::xml {

// Where and why reading failed.
struct SError {
    pugi::xml_node node;
    std::string reason;
};

// Each Write* fills an empty element with the record's fields as child elements.
void WriteParameters(pugi::xml_node element, const CParameters& parameters);
void WriteDevice(pugi::xml_node element, const SDeviceInfo& device);
void WriteCamera(pugi::xml_node element, const SCameraInfo& camera);

// Each Read* sets the fields that the element holds and leaves the others as they are; unknown
// elements and attributes are ignored. On a malformed value it gives false and fills error.
bool ReadParameters(pugi::xml_node element, CParameters& parameters, SError& error);
bool ReadDevice(pugi::xml_node element, SDeviceInfo& device, SError& error);
bool ReadCamera(pugi::xml_node element, SCameraInfo& camera, SError& error);

// The line (from 1) of a byte offset into a text, or of a node in the text it was parsed from;
// 0 when the offset lies outside the text.
int LineAt(std::ptrdiff_t offset, const char* text, std::size_t size);
int LineOf(pugi::xml_node node, const char* text, std::size_t size);

} // namespace kiv::cam::xml
