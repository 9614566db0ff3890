#include "kalimkit/theme/Languages.h"

#include <gtest/gtest.h>

#include "kalimkit/theme/PluralRules.h"

namespace kalim::test {

TEST(Languages, AreChosenByLocales) {
    const struct {
        const char* locale;
        const char* chosen;
        const char* done;
    } cases[] = {
        {"en_US.UTF-8", "en", "Done"}, {"de-AT", "de", "Fertig"}, {"fr@quot", "fr", "Terminer"},
        {"PT_br", "pt", "Concluir"},   {"iw", "he", "סיום"},      {"ar", "ar", "تم"},
        {"zh_CN.UTF-8", "zh", "完成"}, {"zh-Hant", "zh", "完成"}, {"", "en", "Done"},
        {"C.UTF-8", "en", "Done"},     {"POSIX", "en", "Done"},   {"tlh", "en", "Done"},
        {"ja_JP", "ja", "完了"},       {"ko", "ko", "완료"},      {"ru", "ru", "Готово"},
        {"es-419", "es", "Listo"},     {"deutsch", "en", "Done"},
    };
    for (const auto& [locale, chosen, done] : cases) {
        Languages languages;
        EXPECT_EQ(languages.text("完成"), "完成");
        languages.choose(locale);
        EXPECT_EQ(languages.chosen(), chosen) << locale;
        EXPECT_EQ(languages.text("完成"), done) << locale;
        EXPECT_EQ(languages.text("μm"), "μm");
    }
    EXPECT_EQ(Languages::given().size(), 11U);
}

TEST(Languages, OfAHostCompleteAndReplaceThoseThatAreGiven) {
    Languages languages;
    EXPECT_FALSE(languages.add("pl", R"({"完成": "Gotowe", "@direction": "ltr"})"));
    EXPECT_FALSE(languages.add("pt-PT", R"({"完成": "Feito"})"));
    EXPECT_FALSE(languages.add("de", R"({"完成": "Erledigt"})"));
    languages.choose("pl_PL");
    EXPECT_EQ(languages.text("完成"), "Gotowe");
    EXPECT_EQ(languages.text("取消"), "Cancel");
    languages.choose("pt_PT.UTF-8");
    EXPECT_EQ(languages.text("完成"), "Feito");
    EXPECT_EQ(languages.text("保存"), "Salvar");
    languages.choose("de");
    EXPECT_EQ(languages.text("完成"), "Erledigt");
    EXPECT_EQ(languages.text("取消"), "Abbrechen");
}

TEST(Languages, TellWhatIsWrongWithACatalogue) {
    const struct {
        const char* json;
        const char* problem;
    } cases[] = {
        {"[]", "is no JSON object"},
        {R"({"完成": 3})", "\"完成\" is no text"},
        {R"({"完成": {"one": "x"}})", "\"完成\" lacks \"other\""},
        {R"({"完成": {"single": "x", "other": "y"}})", "\"single\" is no category of plurals"},
        {R"({"已保存为 {file}": "Saved"})", "leaves out {file}"},
        {R"({"完成": "Done {file}"})", "puts in {file}, which there is not"},
        {R"({"@direction": "down"})", "must be \"ltr\" or \"rtl\""},
        {R"({"a": "b", "a": "c"})", "twice"},
    };
    Languages languages;
    languages.choose("de");
    for (const auto& [json, problem] : cases) {
        const auto told = languages.add("de", json);
        EXPECT_TRUE(told && told->find(problem) != std::string::npos) << json << told.value_or("");
        EXPECT_EQ(languages.text("完成"), "Fertig");
    }
    EXPECT_TRUE(languages.add("", "{}"));
}

TEST(Languages, CountAsTheirPluralsDo) {
    const struct {
        const char* language;
        std::int64_t count;
        const char* category;
    } cases[] = {
        {"en", 1, "one"},     {"en", 0, "other"},  {"fr", 0, "one"},      {"fr", 1000000, "many"},
        {"ru", 21, "one"},    {"ru", 11, "many"},  {"ru", 23, "few"},     {"ru", 114, "many"},
        {"ar", 0, "zero"},    {"ar", 2, "two"},    {"ar", 103, "few"},    {"ar", 111, "many"},
        {"ar", 100, "other"}, {"he", 2, "two"},    {"ja", 1, "other"},    {"pl", 22, "few"},
        {"pl", 12, "many"},   {"pt-br", 0, "one"}, {"pt-pt", 0, "other"}, {"cy", 6, "many"},
        {"en", -1, "one"},    {"tlh", 1, "other"},
    };
    for (const auto& [language, count, category] : cases)
        EXPECT_EQ(pluralCategory(language, count), category) << language << " " << count;
    for (const char* rule : {"", "n", "n = ", "n % 0 = 0", "x = 1", "n = 1 and", "n = 1 but"})
        EXPECT_FALSE(meetsPluralRule(rule, 1)) << rule;
    EXPECT_TRUE(meetsPluralRule("n = 0..1 or i % 10 = 4,7 and v = 0", 17));
    Languages languages;
    languages.choose("ru");
    EXPECT_EQ(languages.text("移动 {count} 点", 1), "Сдвинуть на {count} точку");
    EXPECT_EQ(languages.text("移动 {count} 点", 10), "Сдвинуть на {count} точек");
}

}  // namespace kalim::test
