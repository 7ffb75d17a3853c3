// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/IFile.h>
#include <kiv/TSharedPtr.h>
#include <kiv/kiv_export.h>

namespace kiv {

// A file in memory. Created empty, it grows as it is written. Attach lets it read (and write in
// place) bytes the caller owns; a write past their end moves the content into storage of the
// file's own, so the caller's bytes are never overrun.
class KIV_EXPORT CMemFile : public IFile {
public:
    static TSharedPtr<CMemFile> Create();
    ~CMemFile() override;
    CMemFile(const CMemFile&) = delete;
    CMemFile& operator=(const CMemFile&) = delete;

    // Replaces the content with size bytes at data and moves to the start. With takeOwnership
    // the file gives the bytes back with kiv::Free when it is done with them; without, the
    // caller keeps them alive for as long as the file uses them.
    void Attach(unsigned char* data, std::uint64_t size, bool takeOwnership);
    const unsigned char* Data() const { return m_data; }

    std::uint64_t Read(void* buffer, std::uint64_t size) override;
    std::uint64_t Write(const void* data, std::uint64_t size) override;
    bool Seek(std::int64_t offset, ESeekOrigin origin) override;
    std::uint64_t Tell() const override { return m_position; }
    std::uint64_t Size() const override { return m_size; }

private:
    CMemFile() = default;
    void ReleaseData();

    unsigned char* m_data = nullptr;
    std::uint64_t m_size = 0;
    std::uint64_t m_capacity = 0;
    std::uint64_t m_position = 0;
    bool m_owned = false;
};

} // namespace kiv
