// SPDX-License-Identifier: Apache-2.0
// Documents in files: any encoding, ends that stay, reading and saving that fail at any call.
#include "tests/support/fault_scheme.h"

#include <core/documents/document_file.h>
#include <core/documents/errors.h>
#include <core/files/errors.h>
#include <core/files/memory_file.h>
#include <core/streams/errors.h>

#include <gtest/gtest.h>

namespace core {
namespace {

TEST(DocumentFile, KeepsTextAndEndsInAnyEncoding) {
    wstring text;
    for (int i = 0; text.size() < 200'000; ++i)
        text += i % 3 == 0 ? u"строка\r\n" : i % 3 == 1 ? u"line\n" : u"\r";
    for (const wstring_view name : {u"utf-8", u"utf-16le", u"windows-1251"}) {
        TextManager document(text);
        const InterfacePtr<IFile> file = open_memory_file(create_memory_data());
        TextWriter writer(file, {.encoding = Encoding(name)});
        write_document(document.text(), writer);
        writer.finish();
        file->seek(0, SeekOrigin::begin);
        TextManager again(u"old");
        const TextMark mark = again.addMark(3);
        TextReader reader(file, {.encoding = Encoding(name)});
        read_document(again, reader);
        EXPECT_EQ(again.text(), document.text());
        EXPECT_EQ(again.text().lineCount(), document.text().lineCount());
        EXPECT_EQ(again.offset(mark), 0u);
        EXPECT_FALSE(again.isModified() || again.undo());
    }
}

TEST(DocumentFile, ATextThatCannotBeReadChangesNothing) {
    TextManager document(u"old");
    document.insert(3, u"er");
    bool first = true;
    TextReader reader(
        [&](std::span<std::byte> into) -> std::size_t {
            into[0] = first ? std::byte{0x41} : std::byte{0xFF};
            first = false;
            return 1;
        },
        u"broken", {.encoding = Encoding()});
    EXPECT_THROW(read_document(document, reader), ConverterException);
    EXPECT_EQ(document.text().text(), u"older");
    EXPECT_EQ(document.undoCount(), 1u);
}

/// A document with a step, a mark and changes that have not been saved.
class FailingFile : public testing::Test {
  protected:
    FailingFile() { document_.insert(3, u"er"); }

    /// Lets the first, second … call of the file system fail until none fails. Returns how many failed.
    template <class Action>
    std::uint64_t eachCallFails(const std::string& content, Action action) {
        for (std::uint64_t fail = 0;; ++fail) {
            disks_.clear();
            for (const char unit : content)
                disks_[kUrl].bytes.push_back(static_cast<std::byte>(unit));
            std::uint64_t failAt = fail;
            const auto files = create_file_system();
            files->registerScheme(SCOM_InternalClass<test::FaultScheme>::create(disks_, failAt).get());
            try {
                action(*files);
            } catch (const FileException&) {
                EXPECT_EQ(document_.text().text(), u"older");
                EXPECT_EQ(document_.undoCount(), 1u);
                EXPECT_TRUE(document_.isModified());
                EXPECT_EQ(document_.offset(mark_), 5u);
                EXPECT_EQ(disks_.size(), 1u);
                EXPECT_EQ(disks_[kUrl].bytes.size(), content.size());
                continue;
            }
            return fail;
        }
    }

    const wstring kUrl = u"fault://disk";
    TextManager document_{u"old"};
    TextMark mark_ = document_.addMark(3, MarkGravity::right);
    std::map<wstring, test::FaultDisk> disks_;
};

TEST_F(FailingFile, LeavesTheDocumentThatReadsAsItWas) {
    const std::uint64_t failed = eachCallFails(
        std::string(100'000, 'x'), [&](IFileSystem& files) { load_document(document_, files, kUrl); });
    EXPECT_GT(failed, 1u);
    EXPECT_EQ(document_.text().size(), 100'000u);
    EXPECT_FALSE(document_.isModified());
}

TEST_F(FailingFile, LeavesTheDocumentThatIsSavedAsItWas) {
    const std::uint64_t failed =
        eachCallFails("the old file", [&](IFileSystem& files) { save_document(document_, files, kUrl); });
    EXPECT_GT(failed, 3u); // open, write, flush, move
    EXPECT_EQ(disks_[kUrl].bytes.size(), 5u);
    EXPECT_FALSE(document_.isModified());
    EXPECT_EQ(document_.undoCount(), 1u);
}

} // namespace
} // namespace core
