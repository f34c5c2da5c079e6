// The tables behind date_names.h.
#include "platform/posix/nls/date_names.h"

namespace {

const ZelDateLanguage kEnglish = {
    {u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"},
    {u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"},
    {u"January", u"February", u"March", u"April", u"May", u"June", u"July", u"August", u"September", u"October",
     u"November", u"December"},
    {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun", u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"},
    u"AM",
    u"PM",
    u"A.D.",
    u"dddd, MMMM d, yyyy",
    u"M/d/yyyy",
    u"h:mm:ss tt",
};

const ZelDateLanguage kKorean = {
    {u"일요일", u"월요일", u"화요일", u"수요일", u"목요일", u"금요일", u"토요일"},
    {u"일", u"월", u"화", u"수", u"목", u"금", u"토"},
    {u"1월", u"2월", u"3월", u"4월", u"5월", u"6월", u"7월", u"8월", u"9월", u"10월", u"11월", u"12월"},
    {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"9", u"10", u"11", u"12"},
    u"오전",
    u"오후",
    u"서기",
    u"yyyy'년' M'월' d'일' dddd",
    u"yyyy-MM-dd",
    u"tt h:mm:ss",
};

const ZelDateLanguage kJapanese = {
    {u"日曜日", u"月曜日", u"火曜日", u"水曜日", u"木曜日", u"金曜日", u"土曜日"},
    {u"日", u"月", u"火", u"水", u"木", u"金", u"土"},
    {u"1月", u"2月", u"3月", u"4月", u"5月", u"6月", u"7月", u"8月", u"9月", u"10月", u"11月", u"12月"},
    {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"9", u"10", u"11", u"12"},
    u"午前",
    u"午後",
    u"西暦",
    u"yyyy'年'M'月'd'日'",
    u"yyyy/MM/dd",
    u"H:mm:ss",
};

const ZelDateLanguage kChinese = {
    {u"星期日", u"星期一", u"星期二", u"星期三", u"星期四", u"星期五", u"星期六"},
    {u"周日", u"周一", u"周二", u"周三", u"周四", u"周五", u"周六"},
    {u"一月", u"二月", u"三月", u"四月", u"五月", u"六月", u"七月", u"八月", u"九月", u"十月", u"十一月",
     u"十二月"},
    {u"1月", u"2月", u"3月", u"4月", u"5月", u"6月", u"7月", u"8月", u"9月", u"10月", u"11月", u"12月"},
    u"上午",
    u"下午",
    u"公元",
    u"yyyy'年'M'月'd'日'",
    u"yyyy/M/d",
    u"H:mm:ss",
};

}  // namespace

const ZelDateLanguage& ZelDateLanguageOf(LANGID language) {
    switch (PRIMARYLANGID(language)) {
        case LANG_KOREAN: return kKorean;
        case LANG_JAPANESE: return kJapanese;
        case LANG_CHINESE: return kChinese;
        default: return kEnglish;
    }
}
