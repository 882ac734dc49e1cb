// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/fault_file.h"

#include <core/files/file_system.h>

#include <map>

namespace core::test {

/// One file system whose files lie on fault disks, by URL.
class FaultScheme : public IFileScheme {
  public:
    using Interfaces = InterfaceList<IFileScheme>;

    explicit FaultScheme(std::map<wstring, FaultDisk>& disks, std::uint64_t& failAt)
        : disks_(disks), failAt_(failAt) {}
    const wstring& schemeName() const noexcept override { return name_; }
    URL parseURL(const wstring& url) const override { return split_url(url); }
    InterfacePtr<IFile> openURL(const wstring& url, OpenMode) override {
        call(url);
        FaultDisk& disk = disks_[url];
        disk.failAt = failAt_ - std::min(failAt_, calls_); // counting goes on in the file
        return open_fault_file(disk);
    }
    std::vector<FileInfo> findFile(const wstring&) override { return {}; }
    std::size_t remove(const wstring& url) override {
        removed_.push_back(disks_.extract(url)); // it may still be open
        return removed_.back().empty() ? 0 : 1;
    }
    void copyFile(const wstring&, const wstring&) override {}
    void moveFile(const wstring& from, const wstring& to) override {
        calls_ += disks_[from].calls;
        call(from);
        disks_[to] = disks_[from];
        removed_.push_back(disks_.extract(from));
    }
    void saveFile(IFile&, const wstring&) override {}

  private:
    void call(const wstring& url) {
        if (calls_++ == failAt_)
            throw_file_error("IDS_FILE_OPEN", url, EIO);
    }
    std::map<wstring, FaultDisk>& disks_;
    std::uint64_t& failAt_;
    std::uint64_t calls_ = 0;
    std::vector<std::map<wstring, FaultDisk>::node_type> removed_;
    wstring name_ = u"fault";
};

} // namespace core::test
