// SPDX-License-Identifier: Apache-2.0
// Reads countries and their currencies, and writes which currency how many countries pay with, as CSV:
//     report countries.csv currencies.csv 2 > report.csv
#include <core/exchange.h>
#include <core/tables.h>
#include <host/host_process.h>

#include <iostream>

int main(int count, char** arguments) {
    if (count != 4) {
        std::cerr << "report COUNTRIES CURRENCIES MOST\n";
        return 2;
    }
    try {
        const host::HostProcess process;
        const core::Table countries = core::load_csv(arguments[1]);
        const core::Table currencies = core::load_csv(arguments[2]);
        const core::Table paid = countries.join(currencies, "Currency = Code", "Name As Money");
        const core::Table report = paid.group({u"Money"}, {core::count(u"Countries"), core::sum(u"People")});
        report.sort("Countries Desc, Money");

        const auto most = core::Numeric::parse(arguments[3]);
        while (most && report.size() > *most)
            report.remove(report[report.size() - 1]);
        core::save_csv(std::cout, report);
    } catch (const core::Exception& e) {
        std::cerr << core::to_utf8(e.description()) << '\n';
        return 1;
    }
}
