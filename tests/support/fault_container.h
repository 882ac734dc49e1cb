// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/fault_file.h"
#include "tests/support/storage_fixture.h"

#include <core/runtime/utf8.h>

#include <string>

namespace core::test {

/// A container with some files, of which some lie in pieces, on a disk that can be made to fail.
class FaultContainer : public InFormats {
  protected:
    FaultContainer() {
        create_container(*open_fault_file(disk_), format_);
        StorageRW storage(open_fault_file(disk_), layout_);
        Random random(3);
        for (int i = 0; i < 25; ++i)
            change(random, storage, model_);
        storage.put(u"kept", model_[u"kept"] = Bytes(5000, std::byte{7}));
    }

    /// The state on the disk, opened again, without any failure.
    Model reopened(const FaultDisk& disk, const std::string& where) {
        FaultDisk copy;
        copy.bytes = disk.bytes;
        StorageRW storage(open_fault_file(copy), layout_);
        for (const StorageProblem& problem : storage.check().problems)
            ADD_FAILURE() << where << ": " << to_utf8(problem.text());
        return contents(storage);
    }

    FaultDisk disk_;
    Model model_;
};

} // namespace core::test
