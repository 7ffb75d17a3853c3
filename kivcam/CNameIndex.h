// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kiv::cam {

// The positions of the named items of a list, found by name in constant time. The camera
// library's lists keep one beside them, so that reading a file with many named items takes time
// in proportion to its size and not to its square.
class CNameIndex {
public:
    // The position stored under name; -1 when there is none.
    int find(std::string_view name) const
    {
        const auto found = m_positions.find(name);
        return found == m_positions.end() ? -1 : found->second;
    }
    // Stores position under name unless a position is stored under it already; false then.
    bool insert(std::string_view name, int position)
    {
        return m_positions.emplace(std::string(name), position).second;
    }
    // Stores position under name, replacing what was stored.
    void assign(std::string_view name, int position)
    {
        m_positions.insert_or_assign(std::string(name), position);
    }
    void erase(std::string_view name)
    {
        if (const auto found = m_positions.find(name); found != m_positions.end())
            m_positions.erase(found);
    }

private:
    // Lets find() look up a string_view without building a std::string.
    struct SHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const
        {
            return std::hash<std::string_view>{}(text);
        }
    };

    std::unordered_map<std::string, int, SHash, std::equal_to<>> m_positions;
};

} // namespace kiv::cam
