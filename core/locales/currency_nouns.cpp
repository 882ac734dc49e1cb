// SPDX-License-Identifier: Apache-2.0
#include "core/locales/currency_nouns.h"

namespace core {
namespace {

// In the order of the codes; a test compares codes and digits with ICU's, and the forms with the language's
// plurals.
constexpr CurrencyNouns kNouns[] = {
    {u"BYN", "en", u"Belarusian ruble,Belarusian rubles", u'm', u"kopeck,kopecks", u'm', 2},
    {u"BYN", "ru", u"белорусский рубль,белорусских рубля,белорусских рублей", u'm', u"копейка,копейки,копеек",
     u'f', 2},
    {u"CHF", "en", u"Swiss franc,Swiss francs", u'm', u"centime,centimes", u'm', 2},
    {u"CHF", "ru", u"швейцарский франк,швейцарских франка,швейцарских франков", u'm',
     u"сантим,сантима,сантимов", u'm', 2},
    {u"CNY", "en", u"yuan,yuan", u'm', u"fen,fen", u'm', 2},
    {u"CNY", "ru", u"юань,юаня,юаней", u'm', u"фэнь,фэня,фэней", u'm', 2},
    {u"EUR", "en", u"euro,euros", u'm', u"cent,cents", u'm', 2},
    {u"EUR", "ru", u"евро,евро,евро", u'm', u"цент,цента,центов", u'm', 2},
    {u"GBP", "en", u"pound sterling,pounds sterling", u'm', u"penny,pence", u'm', 2},
    {u"GBP", "ru", u"фунт стерлингов,фунта стерлингов,фунтов стерлингов", u'm', u"пенс,пенса,пенсов", u'm',
     2},
    {u"INR", "en", u"Indian rupee,Indian rupees", u'm', u"paisa,paise", u'm', 2},
    {u"INR", "ru", u"индийская рупия,индийские рупии,индийских рупий", u'f', u"пайса,пайсы,пайс", u'f', 2},
    {u"JPY", "en", u"yen,yen", u'm', u"", u'm', 0},
    {u"JPY", "ru", u"иена,иены,иен", u'f', u"", u'm', 0},
    {u"KWD", "en", u"Kuwaiti dinar,Kuwaiti dinars", u'm', u"fils,fils", u'm', 3},
    {u"KWD", "ru", u"кувейтский динар,кувейтских динара,кувейтских динаров", u'm', u"филс,филса,филсов", u'm',
     3},
    {u"KZT", "en", u"tenge,tenge", u'm', u"tiyn,tiyn", u'm', 2},
    {u"KZT", "ru", u"тенге,тенге,тенге", u'm', u"тиын,тиына,тиынов", u'm', 2},
    {u"PLN", "en", u"zloty,zlotys", u'm', u"grosz,groszy", u'm', 2},
    {u"PLN", "ru", u"злотый,злотых,злотых", u'm', u"грош,гроша,грошей", u'm', 2},
    {u"RUB", "en", u"ruble,rubles", u'm', u"kopeck,kopecks", u'm', 2},
    {u"RUB", "ru", u"рубль,рубля,рублей", u'm', u"копейка,копейки,копеек", u'f', 2},
    {u"TRY", "en", u"Turkish lira,Turkish lira", u'm', u"kurus,kurus", u'm', 2},
    {u"TRY", "ru", u"турецкая лира,турецкие лиры,турецких лир", u'f', u"куруш,куруша,курушей", u'm', 2},
    {u"UAH", "en", u"hryvnia,hryvnias", u'm', u"kopiyka,kopiykas", u'm', 2},
    {u"UAH", "ru", u"гривна,гривны,гривен", u'f', u"копейка,копейки,копеек", u'f', 2},
    {u"USD", "en", u"dollar,dollars", u'm', u"cent,cents", u'm', 2},
    {u"USD", "ru", u"доллар,доллара,долларов", u'm', u"цент,цента,центов", u'm', 2},
};

} // namespace

std::span<const CurrencyNouns> currency_nouns() noexcept {
    return kNouns;
}

} // namespace core
