#include <svg/Color.h>
#include <svg/UnitValue.h>

#include <gtest/gtest.h>

#include <clocale>
#include <initializer_list>
#include <string>

// Numbers are read with the point whatever the process locale says.
TEST(Locale, DecimalCommaLocaleDoesNotChangeNumbers)
{
    const std::string previous = std::setlocale(LC_ALL, nullptr);
    bool switched = false;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "fr_FR.utf8", "ru_RU.UTF-8"}) {
        if (std::setlocale(LC_ALL, name) != nullptr && std::localeconv()->decimal_point[0] == ',') {
            switched = true;
            break;
        }
    }
    vk::svg::UnitValue point, comma;
    const bool pointOk = vk::svg::UnitValue::parseVal("12.5mm", point);
    const bool commaOk = vk::svg::UnitValue::parseVal("12,5mm", comma);
    Wm4::Vector4<unsigned char> rgba(0, 0, 0, 0);
    const bool colourOk = vk::svg::ParseSvgColor("rgb(1.5%,0,0)", rgba);
    std::setlocale(LC_ALL, previous.c_str()); // before any assertion can leave the test
    if (!switched) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    EXPECT_TRUE(pointOk && point.value == 12.5f);
    EXPECT_FALSE(commaOk);
    EXPECT_TRUE(colourOk && rgba[0] == 3);
}
