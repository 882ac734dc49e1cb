// SPDX-License-Identifier: Apache-2.0
// Every thread has the formats of its process, kept until the settings differ.
#include "tests/locales/read_back.h"

#include <core/locales.h>
#include <host/host_process.h>

namespace core {
namespace {

TEST(DefaultFormats, FollowTheSettingsOfTheThreadsProcess) {
    const auto texts = [] {
        return default_numeric_format().format(Numeric(1234)) + u'|' + default_date_format().format(Date()) +
               u'|' + default_bool_format().format(true);
    };
    const wstring plain = u"1234|0001-01-01 00:00:00|Yes";
    EXPECT_EQ(texts(), plain);
    Settings settings;
    settings.locale = kRussian;
    settings.part<FormatSettings>().numericFormat = u"fraction=1";
    {
        const host::HostProcess process(settings);
        EXPECT_EQ(texts(), u"1234.0|01.01.0001 00:00:00|Да");
        EXPECT_EQ(&default_date_format(), &default_date_format()) << "made once";
    }
    EXPECT_EQ(texts(), plain);

    settings.part<FormatSettings>().boolFormat = u"nonsense";
    settings.part<FormatSettings>().numericFormat.clear();
    settings.part<FormatSettings>().dateFormat = u"date=d/M/yyyy";
    const host::HostProcess process(settings);
    EXPECT_THROW((void)default_bool_format(), CtorException);
    EXPECT_EQ(default_date_format().format(Date()), u"1/1/0001 00:00:00");
}

} // namespace
} // namespace core
