// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGenICamTree.h"

#include <kiv/strprintf.h>

#include <arv.h>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace kiv::cam {

namespace {

using EType = SGenICamFeature::EType;

CString takeError(GError*& error)
{
    CString text(error->message);
    g_clear_error(&error);
    return text;
}

// A feature's kind by its element in the description, which tells integers from floats more
// reliably than the interfaces a node class happens to implement.
EType typeOf(ArvGcNode* node)
{
    static const struct {
        const char* element;
        EType type;
    } types[] = {
        {"Category", SGenICamFeature::CATEGORY},
        {"Integer", SGenICamFeature::INTEGER},
        {"IntReg", SGenICamFeature::INTEGER},
        {"MaskedIntReg", SGenICamFeature::INTEGER},
        {"IntSwissKnife", SGenICamFeature::INTEGER},
        {"IntConverter", SGenICamFeature::INTEGER},
        {"Float", SGenICamFeature::FLOAT},
        {"FloatReg", SGenICamFeature::FLOAT},
        {"SwissKnife", SGenICamFeature::FLOAT},
        {"Converter", SGenICamFeature::FLOAT},
        {"Enumeration", SGenICamFeature::ENUMERATION},
        {"Boolean", SGenICamFeature::BOOLEAN},
        {"Command", SGenICamFeature::COMMAND},
        {"String", SGenICamFeature::STRING},
        {"StringReg", SGenICamFeature::STRING},
    };
    const char* element = arv_dom_node_get_node_name(ARV_DOM_NODE(node));
    for (const auto& entry : types) {
        if (element && std::strcmp(element, entry.element) == 0)
            return entry.type;
    }
    return SGenICamFeature::OTHER;
}

SGenICamFeature::EVisibility visibilityOf(ArvGcFeatureNode* node)
{
    switch (arv_gc_feature_node_get_visibility(node)) {
    case ARV_GC_VISIBILITY_INVISIBLE:
        return SGenICamFeature::INVISIBLE;
    case ARV_GC_VISIBILITY_GURU:
        return SGenICamFeature::GURU;
    case ARV_GC_VISIBILITY_EXPERT:
        return SGenICamFeature::EXPERT;
    default:
        return SGenICamFeature::BEGINNER;
    }
}

// As people write numbers (1000000, not 1e+06), but exact where that needs more digits.
CString numberText(double value)
{
    CString text = strprintf("%.15g", value);
    return std::strtod(text.data(), nullptr) == value ? text : strprintf("%.17g", value);
}

CString numberText(std::int64_t value)
{
    return strprintf("%lld", static_cast<long long>(value));
}

CString withUnit(const CString& number, const CString& unit)
{
    return unit.empty() ? number : number + " " + unit;
}

template <typename T> bool parseNumber(const CString& text, T& value)
{
    const char* begin = text.data();
    const char* end = begin + text.length();
    if (begin != end && *begin == '+')
        ++begin;
    const auto [stop, error] = std::from_chars(begin, end, value);
    return begin != end && error == std::errc() && stop == end;
}

// Access, availability and lock together, and the reason when it cannot be written.
void readAccess(ArvGcFeatureNode* node, SGenICamFeature& row)
{
    GError* error = nullptr;
    const bool implemented = arv_gc_feature_node_is_implemented(node, &error);
    if (error) {
        row.access = SGenICamFeature::NOT_AVAILABLE;
        row.accessReason = "Its state cannot be read: " + takeError(error);
        return;
    }
    const bool available = implemented && arv_gc_feature_node_is_available(node, &error);
    if (error) {
        row.access = SGenICamFeature::NOT_AVAILABLE;
        row.accessReason = "Its state cannot be read: " + takeError(error);
        return;
    }
    if (!implemented || !available) {
        row.access = SGenICamFeature::NOT_AVAILABLE;
        row.accessReason = implemented ? "Not available with the camera's current settings."
                                       : "This camera does not implement it.";
        return;
    }
    const bool locked = arv_gc_feature_node_is_locked(node, &error);
    if (error)
        g_clear_error(&error);
    const ArvGcAccessMode mode = arv_gc_feature_node_get_actual_access_mode(node);
    if (mode == ARV_GC_ACCESS_MODE_WO) {
        row.access = locked ? SGenICamFeature::NOT_AVAILABLE : SGenICamFeature::WRITE_ONLY;
    } else if (mode == ARV_GC_ACCESS_MODE_RW && !locked) {
        row.access = SGenICamFeature::READ_WRITE;
    } else {
        row.access = SGenICamFeature::READ_ONLY;
    }
    row.accessReason = locked ? "Locked with the camera's current settings (for example while "
                                "it acquires)."
        : mode == ARV_GC_ACCESS_MODE_RO ? "Read-only."
                                        : "";
}

void readEntries(ArvGcEnumeration* node, SGenICamFeature& row, GError*& error)
{
    guint count = 0;
    const char** names = arv_gc_enumeration_dup_available_string_values(node, &count, &error);
    if (!error) {
        for (guint i = 0; i < count; ++i)
            row.entries.add(CString(names[i]));
    }
    g_free(names);
    if (error)
        return;
    const char** displayNames
        = arv_gc_enumeration_dup_available_display_names(node, &count, &error);
    if (!error) {
        for (guint i = 0; i < count; ++i)
            row.entryDisplayNames.add(CString(displayNames[i]));
    }
    g_free(displayNames);
}

// A limit as read, or what stands for no limit when the feature has none.
template <typename T> T limit(T value, T none, GError*& error)
{
    if (!error)
        return value;
    g_clear_error(&error);
    return none;
}

// The value and the limits of a readable feature.
void readValue(ArvGcNode* node, SGenICamFeature& row)
{
    GError* error = nullptr;
    GError* limitError = nullptr;
    switch (row.type) {
    case SGenICamFeature::INTEGER:
        if (ARV_IS_GC_INTEGER(node)) {
            ArvGcInteger* integer = ARV_GC_INTEGER(node);
            row.value
                = numberText(static_cast<std::int64_t>(arv_gc_integer_get_value(integer, &error)));
            if (!error) {
                // A computed integer (a SwissKnife) may have no limits at all.
                row.intMin = limit<std::int64_t>(arv_gc_integer_get_min(integer, &limitError),
                    std::numeric_limits<std::int64_t>::min(), limitError);
                row.intMax = limit<std::int64_t>(arv_gc_integer_get_max(integer, &limitError),
                    std::numeric_limits<std::int64_t>::max(), limitError);
                row.intInc = std::max<std::int64_t>(1,
                    limit<std::int64_t>(
                        arv_gc_integer_get_inc(integer, &limitError), 1, limitError));
            }
            row.unit = CString(arv_gc_integer_get_unit(integer));
        }
        break;
    case SGenICamFeature::FLOAT:
        if (ARV_IS_GC_FLOAT(node)) {
            ArvGcFloat* number = ARV_GC_FLOAT(node);
            row.value = numberText(arv_gc_float_get_value(number, &error));
            if (!error) {
                row.floatMin = limit(arv_gc_float_get_min(number, &limitError),
                    std::numeric_limits<double>::lowest(), limitError);
                row.floatMax = limit(arv_gc_float_get_max(number, &limitError),
                    std::numeric_limits<double>::max(), limitError);
                // Aravis gives a vanishing step for a float without one.
                const double inc
                    = limit(arv_gc_float_get_inc(number, &limitError), 0.0, limitError);
                row.floatInc = std::isfinite(inc) && inc > 1e-300 ? inc : 0;
            }
            row.unit = CString(arv_gc_float_get_unit(number));
        }
        break;
    case SGenICamFeature::ENUMERATION: {
        ArvGcEnumeration* enumeration = ARV_GC_ENUMERATION(node);
        row.value = CString(arv_gc_enumeration_get_string_value(enumeration, &error));
        if (!error)
            readEntries(enumeration, row, error);
        break;
    }
    case SGenICamFeature::BOOLEAN:
        row.value = arv_gc_boolean_get_value(ARV_GC_BOOLEAN(node), &error) ? "true" : "false";
        break;
    case SGenICamFeature::STRING:
        if (ARV_IS_GC_STRING(node)) {
            row.value = CString(arv_gc_string_get_value(ARV_GC_STRING(node), &error));
            if (!error)
                row.intMax = arv_gc_string_get_max_length(ARV_GC_STRING(node), &error);
        }
        break;
    default:
        break;
    }
    if (error) {
        row.value = CString();
        row.error = takeError(error);
    }
}

// Reads what may change of a row: access, value, limits, entries.
void readState(ArvGcNode* node, SGenICamFeature& row)
{
    const SGenICamFeature blank;
    row.access = blank.access;
    row.accessReason = CString();
    row.value = CString();
    row.intMin = blank.intMin;
    row.intMax = blank.intMax;
    row.intInc = blank.intInc;
    row.floatMin = blank.floatMin;
    row.floatMax = blank.floatMax;
    row.floatInc = blank.floatInc;
    row.entries = {};
    row.entryDisplayNames = {};
    row.error = CString();
    if (row.type == SGenICamFeature::CATEGORY) {
        row.access = SGenICamFeature::READ_ONLY;
        return;
    }
    if (!ARV_IS_GC_FEATURE_NODE(node)) {
        row.accessReason = "The camera's description has no such feature.";
        return;
    }
    readAccess(ARV_GC_FEATURE_NODE(node), row);
    if (row.isReadable())
        readValue(node, row);
}

bool sameNames(const TArray<CString>& a, const TArray<CString>& b)
{
    if (a.count() != b.count())
        return false;
    for (int i = 0; i < a.count(); ++i) {
        if (!(a[i] == b[i]))
            return false;
    }
    return true;
}

bool sameState(const SGenICamFeature& a, const SGenICamFeature& b)
{
    return a.access == b.access && a.accessReason == b.accessReason && a.value == b.value
        && a.intMin == b.intMin && a.intMax == b.intMax && a.intInc == b.intInc
        && a.floatMin == b.floatMin && a.floatMax == b.floatMax && a.floatInc == b.floatInc
        && sameNames(a.entries, b.entries) && sameNames(a.entryDisplayNames, b.entryDisplayNames)
        && a.error == b.error;
}

ArvGcNode* nodeOf(ArvDevice* device, const CString& name)
{
    return arv_device_get_feature(device, name.data());
}

CString joined(const TArray<CString>& names)
{
    CString text;
    for (const CString& name : names)
        text += (text.empty() ? CString() : CString(", ")) + name;
    return text;
}

bool checkInteger(const SGenICamFeature& feature, const CString& text, CString& message)
{
    const char* name = feature.name.data();
    std::int64_t value = 0;
    if (!parseNumber(text, value)) {
        message = strprintf("%s: \"%s\" is not a whole number.", name, text.data());
        return false;
    }
    if (value < feature.intMin || value > feature.intMax) {
        message = strprintf("%s: %s is outside the range %s to %s.", name,
            withUnit(text, feature.unit).data(), numberText(feature.intMin).data(),
            withUnit(numberText(feature.intMax), feature.unit).data());
        return false;
    }
    if ((value - feature.intMin) % feature.intInc != 0) {
        const std::int64_t below = CGenICamTree::Fit(feature, value);
        message = strprintf("%s: %s is not a valid step: the value must be %s plus a multiple of "
                            "%s, such as %s or %s.",
            name, text.data(), numberText(feature.intMin).data(), numberText(feature.intInc).data(),
            numberText(below).data(), numberText(below + feature.intInc).data());
        return false;
    }
    return true;
}

bool checkFloat(const SGenICamFeature& feature, const CString& text, CString& message)
{
    const char* name = feature.name.data();
    double value = 0;
    if (!parseNumber(text, value) || !std::isfinite(value)) {
        message = strprintf("%s: \"%s\" is not a number.", name, text.data());
        return false;
    }
    if (value < feature.floatMin || value > feature.floatMax) {
        message = strprintf("%s: %s is outside the range %s to %s.", name,
            withUnit(text, feature.unit).data(), numberText(feature.floatMin).data(),
            withUnit(numberText(feature.floatMax), feature.unit).data());
        return false;
    }
    if (feature.floatInc > 0) {
        const double steps = (value - feature.floatMin) / feature.floatInc;
        if (std::abs(steps - std::round(steps)) > 1e-6) {
            message = strprintf("%s: %s is not a valid step: the value must be %s plus a "
                                "multiple of %s.",
                name, text.data(), numberText(feature.floatMin).data(),
                numberText(feature.floatInc).data());
            return false;
        }
    }
    return true;
}

bool parseBoolean(const CString& text, bool& value)
{
    if (text == "true" || text == "1") {
        value = true;
        return true;
    }
    if (text == "false" || text == "0") {
        value = false;
        return true;
    }
    return false;
}

} // namespace

bool CGenICamTree::Read(ArvDevice* device, CString& error)
{
    Clear();
    ArvGc* genicam = arv_device_get_genicam(device);
    if (!genicam || !ARV_IS_GC_CATEGORY(arv_gc_get_node(genicam, "Root"))) {
        error = "The camera's GenICam description has no \"Root\" category.";
        return false;
    }
    TArray<CString> path;
    AddCategory(device, "Root", -1, 0, path);
    return true;
}

void CGenICamTree::AddCategory(
    ArvDevice* device, const char* name, int parent, int depth, TArray<CString>& path)
{
    ArvGcNode* category = arv_gc_get_node(arv_device_get_genicam(device), name);
    path.add(CString(name));
    for (const GSList* item = arv_gc_category_get_features(ARV_GC_CATEGORY(category)); item;
         item = item->next) {
        const char* featureName = static_cast<const char*>(item->data);
        ArvGcNode* node = arv_gc_get_node(arv_device_get_genicam(device), featureName);
        if (!ARV_IS_GC_FEATURE_NODE(node))
            continue;
        SGenICamFeature row;
        row.row = m_rows.count();
        row.parent = parent;
        row.depth = depth;
        row.name = CString(featureName);
        ArvGcFeatureNode* feature = ARV_GC_FEATURE_NODE(node);
        row.displayName = CString(arv_gc_feature_node_get_display_name(feature));
        if (row.displayName.empty())
            row.displayName = row.name;
        row.description = CString(arv_gc_feature_node_get_description(feature));
        if (row.description.empty())
            row.description = CString(arv_gc_feature_node_get_tooltip(feature));
        row.type = typeOf(node);
        row.visibility = visibilityOf(feature);
        if (row.type == SGenICamFeature::CATEGORY
            && (depth + 1 >= MaxDepth || path.contains(row.name)))
            continue;
        readState(node, row);
        m_rows.add(row);
        if (row.type == SGenICamFeature::CATEGORY)
            AddCategory(device, featureName, row.row, depth + 1, path);
    }
    path.removeAt(path.count() - 1);
}

void CGenICamTree::Clear()
{
    m_rows = {};
}

const SGenICamFeature* CGenICamTree::Find(const CString& name) const
{
    for (const SGenICamFeature& row : m_rows) {
        if (row.name == name)
            return &row;
    }
    return nullptr;
}

void CGenICamTree::Refresh(ArvDevice* device)
{
    for (SGenICamFeature& row : m_rows)
        readState(nodeOf(device, row.name), row);
}

bool CGenICamTree::ReadNow(ArvDevice* device, const CString& name, SGenICamFeature& now) const
{
    const SGenICamFeature* row = Find(name);
    if (!row)
        return false;
    now = *row;
    readState(nodeOf(device, name), now);
    return true;
}

TArray<SGenICamFeature> CGenICamTree::Changed(
    const TArray<SGenICamFeature>& before, const TArray<SGenICamFeature>& after)
{
    if (before.count() != after.count())
        return after;
    TArray<SGenICamFeature> changed;
    for (int i = 0; i < after.count(); ++i) {
        if (!sameState(before[i], after[i]))
            changed.add(after[i]);
    }
    return changed;
}

bool CGenICamTree::Check(const SGenICamFeature& feature, const CString& text, CString& message)
{
    const char* name = feature.name.data();
    if (!feature.isWritable()) {
        message = strprintf("%s cannot be written now. %s", name, feature.accessReason.data());
        return false;
    }
    switch (feature.type) {
    case SGenICamFeature::INTEGER:
        return checkInteger(feature, text, message);
    case SGenICamFeature::FLOAT:
        return checkFloat(feature, text, message);
    case SGenICamFeature::ENUMERATION:
        if (!feature.entries.contains(text)) {
            message = strprintf("%s: \"%s\" is not one of the entries available now (%s).", name,
                text.data(), joined(feature.entries).data());
            return false;
        }
        return true;
    case SGenICamFeature::BOOLEAN: {
        bool value = false;
        if (!parseBoolean(text, value)) {
            message = strprintf("%s: \"%s\" is neither true nor false.", name, text.data());
            return false;
        }
        return true;
    }
    case SGenICamFeature::STRING:
        if (feature.intMax > 0 && text.length() > feature.intMax) {
            message = strprintf("%s: the text is %d bytes long; the camera takes at most %s.", name,
                text.length(), numberText(feature.intMax).data());
            return false;
        }
        return true;
    case SGenICamFeature::COMMAND:
        return true;
    default:
        message = strprintf("%s is a %s, which cannot be written here.", name,
            feature.type == SGenICamFeature::CATEGORY ? "category" : "feature of a kind");
        return false;
    }
}

SGenICamResult CGenICamTree::Write(ArvDevice* device, const CString& name, const CString& text)
{
    SGenICamResult result;
    // The rules of the moment, not of the last read.
    SGenICamFeature now;
    if (!ReadNow(device, name, now)) {
        result.message = strprintf("The camera has no feature \"%s\".", name.data());
        return result;
    }
    ArvGcNode* node = nodeOf(device, name);
    if (!Check(now, text, result.message))
        return result;
    GError* error = nullptr;
    switch (now.type) {
    case SGenICamFeature::INTEGER: {
        std::int64_t value = 0;
        parseNumber(text, value);
        arv_gc_integer_set_value(ARV_GC_INTEGER(node), value, &error);
        break;
    }
    case SGenICamFeature::FLOAT: {
        double value = 0;
        parseNumber(text, value);
        arv_gc_float_set_value(ARV_GC_FLOAT(node), value, &error);
        break;
    }
    case SGenICamFeature::ENUMERATION:
        arv_gc_enumeration_set_string_value(ARV_GC_ENUMERATION(node), text.data(), &error);
        break;
    case SGenICamFeature::BOOLEAN: {
        bool value = false;
        parseBoolean(text, value);
        arv_gc_boolean_set_value(ARV_GC_BOOLEAN(node), value, &error);
        break;
    }
    case SGenICamFeature::STRING:
        arv_gc_string_set_value(ARV_GC_STRING(node), text.data(), &error);
        break;
    case SGenICamFeature::COMMAND:
        arv_gc_command_execute(ARV_GC_COMMAND(node), &error);
        break;
    default:
        break;
    }
    if (error) {
        result.message = now.type == SGenICamFeature::COMMAND
            ? strprintf(
                "The camera refused the command %s: %s", name.data(), takeError(error).data())
            : strprintf("The camera refused %s = %s: %s", name.data(), text.data(),
                takeError(error).data());
        return result;
    }
    result.ok = true;
    return result;
}

std::int64_t CGenICamTree::Fit(const SGenICamFeature& feature, std::int64_t value)
{
    const std::int64_t inc = std::max<std::int64_t>(1, feature.intInc);
    const std::int64_t top = feature.intMin + (feature.intMax - feature.intMin) / inc * inc;
    if (value <= feature.intMin)
        return feature.intMin;
    if (value >= top)
        return top;
    return feature.intMin + (value - feature.intMin) / inc * inc;
}

} // namespace kiv::cam
