// OS: the system's default language and its locale name.
#include <cstring>

#include "foundation/os_impl.h"
#include "platform/system_info.h"

namespace Hostkit {

namespace {

// One row of the language table: one identifier, or two that differ only in the sublanguage
// (0 when the row has one), and the locale name. A few rows are irregular on purpose (2052
// names "zh", 9225 "en", 3082 "es", 2074 and 3098 both "sr") and are kept as they are.
struct LanguageRow {
  LANGID ids[2];
  const char* name;
};

constexpr LanguageRow kLanguages[] = {
    {{1078, 0}, "af"},     {{1052, 0}, "sq"},       {{1025, 0}, "ar_SA"},  {{2049, 0}, "ar_IQ"},
    {{3073, 0}, "ar_EG"},  {{4097, 0}, "ar_LY"},    {{5121, 0}, "ar_DZ"},  {{6145, 0}, "ar_MA"},
    {{7169, 0}, "ar_TN"},  {{8193, 0}, "ar_OM"},    {{9217, 0}, "ar_YE"},  {{10241, 0}, "ar_SY"},
    {{11265, 0}, "ar_JO"}, {{12289, 0}, "ar_LB"},   {{13313, 0}, "ar_KW"}, {{14337, 0}, "ar_AE"},
    {{15361, 0}, "ar_BH"}, {{16385, 0}, "ar_QA"},   {{1068, 2092}, "az"},  {{1067, 0}, "hy"},
    {{1101, 0}, "as"},     {{1069, 0}, "eu"},       {{1059, 0}, "be"},     {{1093, 0}, "bn"},
    {{1026, 0}, "bg"},     {{1109, 0}, "my"},       {{1027, 0}, "ca"},     {{1028, 0}, "zh_TW"},
    {{2052, 0}, "zh"},     {{3076, 0}, "zh_HK"},    {{4100, 0}, "zh_SG"},  {{5124, 0}, "zh_MO"},
    {{1050, 0}, "hr"},     {{1029, 0}, "cs"},       {{1030, 0}, "da"},     {{1043, 0}, "nl_NL"},
    {{2067, 0}, "nl_BE"},  {{1033, 0}, "en_US"},    {{2057, 0}, "en_GB"},  {{3081, 0}, "en_AU"},
    {{4105, 0}, "en_CA"},  {{5129, 0}, "en_NZ"},    {{6153, 0}, "en_IE"},  {{7177, 0}, "en_ZA"},
    {{8201, 0}, "en_JM"},  {{9225, 0}, "en"},       {{10249, 0}, "en_BZ"}, {{11273, 0}, "en_TT"},
    {{12297, 0}, "en_ZW"}, {{13321, 0}, "en_PH"},   {{1061, 0}, "et"},     {{1080, 0}, "fo"},
    {{1065, 0}, "fa"},     {{1035, 0}, "fi"},       {{1036, 0}, "fr_FR"},  {{2060, 0}, "fr_BE"},
    {{3084, 0}, "fr_CA"},  {{4108, 0}, "fr_CH"},    {{5132, 0}, "fr_LU"},  {{6156, 0}, "fr_MC"},
    {{1079, 0}, "ka"},     {{1031, 0}, "de_DE"},    {{2055, 0}, "de_CH"},  {{3079, 0}, "de_AT"},
    {{4103, 0}, "de_LU"},  {{5127, 0}, "de_LI"},    {{1032, 0}, "el"},     {{1095, 0}, "gu"},
    {{1037, 0}, "he"},     {{1081, 0}, "hi"},       {{1038, 0}, "hu"},     {{1039, 0}, "is"},
    {{1057, 0}, "id"},     {{1040, 0}, "it_IT"},    {{2064, 0}, "it_CH"},  {{1041, 0}, "ja"},
    {{1099, 0}, "kn"},     {{2144, 0}, "ks_IN"},    {{1087, 0}, "kk"},     {{1042, 2066}, "ko"},
    {{1062, 0}, "lv_LV"},  {{1063, 2087}, "lt_LT"}, {{1071, 0}, "mk_MK"},  {{1086, 0}, "ms_MY"},
    {{2110, 0}, "ms_BN"},  {{1100, 0}, "ml"},       {{1102, 0}, "mr"},     {{2145, 0}, "ne_IN"},
    {{1044, 2068}, "no"},  {{1096, 0}, "or"},       {{1045, 0}, "pl"},     {{1046, 0}, "pt_BR"},
    {{2070, 0}, "pt_PT"},  {{1094, 0}, "pa"},       {{1048, 0}, "ro"},     {{1049, 0}, "ru"},
    {{1103, 0}, "sa"},     {{3098, 0}, "sr"},       {{2074, 0}, "sr"},     {{1113, 0}, "sd"},
    {{1051, 0}, "sk"},     {{1060, 0}, "sl"},       {{1034, 0}, "es_ES"},  {{2058, 0}, "es_MX"},
    {{3082, 0}, "es"},     {{4106, 0}, "es_GT"},    {{5130, 0}, "es_CR"},  {{6154, 0}, "es_PA"},
    {{7178, 0}, "es_DO"},  {{8202, 0}, "es_VE"},    {{9226, 0}, "es_CO"},  {{10250, 0}, "es_PE"},
    {{11274, 0}, "es_AR"}, {{12298, 0}, "es_EC"},   {{13322, 0}, "es_CL"}, {{14346, 0}, "es_UY"},
    {{15370, 0}, "es_PY"}, {{16394, 0}, "es_BO"},   {{17418, 0}, "es_SV"}, {{18442, 0}, "es_HN"},
    {{19466, 0}, "es_NI"}, {{20490, 0}, "es_PR"},   {{1089, 0}, "sw_KE"},  {{1053, 0}, "sv_SE"},
    {{2077, 0}, "sv_FI"},  {{1097, 0}, "ta"},       {{1092, 0}, "tt"},     {{1098, 0}, "te"},
    {{1054, 0}, "th"},     {{1055, 0}, "tr"},       {{1058, 0}, "uk"},     {{1056, 0}, "ur_PK"},
    {{2080, 0}, "ur_IN"},  {{1091, 2115}, "uz"},    {{1066, 0}, "vi"},     {{1112, 0}, "mni"},
    {{1072, 0}, "bnt"},    {{1111, 0}, "kok"},
};

const char* LocaleName(LANGID language) {
  for (const auto& row : kLanguages) {
    if (row.ids[0] == language || (row.ids[1] != 0 && row.ids[1] == language)) {
      return row.name;
    }
  }
  return "";
}

}  // namespace

// `name` receives the locale name, or the empty string for an identifier the table lacks; the
// caller's buffer holds at least 6 bytes, which the longest name needs.
bool OS_impl::SystemDefaultLanguage(unsigned int& langId, char* name) {
  if (name == nullptr) {
    return false;
  }
  const LANGID language = platform::GetSystemDefaultLangID();
  langId = language;
  if (language == 0) {
    return false;
  }
  const char* locale = LocaleName(language);
  std::memcpy(name, locale, std::strlen(locale) + 1);
  return true;
}

}  // namespace Hostkit
