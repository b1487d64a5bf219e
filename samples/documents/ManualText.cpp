// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/ManualText.h"

namespace samples {

const std::vector<ManualChapter>& manualChapters()
{
    using Kind = ManualBlock::Kind;
    static const std::vector<ManualChapter> chapters = {
        {"Introduction",
         {{Kind::paragraph, "The Tern 3 measures temperature, humidity, air pressure, rain and wind, and "
                            "shows all of it on one quiet "
                            "screen. It needs no account and no network: readings go by radio from the mast "
                            "to the console and are "
                            "kept there for two years."},
          {Kind::section, "What is in the box"},
          {Kind::bullet, "Mast unit with wind cups, vane and rain funnel"},
          {Kind::bullet, "Console with a 5-inch screen that reads like paper"},
          {Kind::bullet, "Mast bracket, four screws and wall plugs"},
          {Kind::bullet, "USB-C cable, one metre, and this guide"},
          {Kind::section, "How to read this manual"},
          {Kind::paragraph, "Chapters 2 and 3 are about safety and set-up and should be read once from end "
                            "to end. The others can be "
                            "opened when they are needed. Words in the outline of this document and in its "
                            "table of contents lead "
                            "straight to their page."},
          {Kind::crossReference, "In a hurry? Go to the set-up procedure", 3}}},
        {"Safety",
         {{Kind::paragraph,
           "The station is a simple device, but it is mounted high up and stays outdoors in all weathers. "
           "Please "
           "follow these instructions for your own sake and for that of those who pass below."},
          {Kind::warning, "Warning: Never work on a ladder or a roof in wind, rain or frost, and never "
                          "alone. Keep the mast at least "
                          "ten metres away from overhead lines."},
          {Kind::section, "The mast unit"},
          {Kind::bullet, "Mount it on a structure that bears 40 kg of side load."},
          {Kind::bullet, "Do not mount it on a chimney that is in use."},
          {Kind::bullet, "Switch off the heater of the rain funnel before you clean it."},
          {Kind::section, "The battery"},
          {Kind::paragraph, "The mast unit holds a lithium iron phosphate cell that the solar panel charges. "
                            "It lasts about eight years. "
                            "Hand it in where batteries are collected, never with household waste."},
          {Kind::warning,
           "Caution: Do not open the cell, do not heat it, and do not charge it below freezing point."},
          {Kind::crossReference, "How to replace the cell", 8}}},
        {"Setting up",
         {{Kind::paragraph, "Set-up takes about twenty minutes. Do the first five steps indoors."},
          {Kind::section, "Before you go outside"},
          {Kind::step,
           "Connect the console to its cable. The screen shows a tern and then the word “Listening”."},
          {Kind::step, "Press the button under the mast unit until the lamp blinks green."},
          {Kind::step, "Wait until the console shows the first reading, at most one minute."},
          {Kind::step, "Enter the height above sea level, so that air pressure is shown correctly."},
          {Kind::step, "Hold the vane to the north and press Set north on the console."},
          {Kind::section, "On the mast"},
          {Kind::step, "Screw the bracket to the mast with the arrow upwards."},
          {Kind::step, "Slide the unit onto the bracket until it clicks."},
          {Kind::step, "Turn the unit until its solar panel faces the midday sun."},
          {Kind::step, "Check with the bubble level that the rain funnel is upright."},
          {Kind::warning, "Note: Within the first hour the readings for humidity drift while the sensor "
                          "dries. This is normal."},
          {Kind::crossReference, "No reading appears? See the table of faults", 9}}},
        {"Parts and controls",
         {{Kind::figure, "The mast unit and the console"},
          {Kind::tableRow, "1|Wind cups, which turn in the lightest air"},
          {Kind::tableRow, "2|Vane"},
          {Kind::tableRow, "3|Rain funnel with its heater"},
          {Kind::tableRow, "4|Shield of the thermometer and hygrometer"},
          {Kind::tableRow, "5|Solar panel and, below it, the lamp and the button"},
          {Kind::tableRow, "6|Console: screen, dial and Back key"},
          {Kind::paragraph, "Turn the dial to move, press it to choose, and press Back to leave. Nothing on "
                            "the console is ever more "
                            "than three turns away."}}},
        {"Reading the screen",
         {{Kind::paragraph, "The upper half shows the present, the lower half the last 24 hours as a curve. "
                            "An arrow beside a number "
                            "tells whether it rises or falls; two arrows mean that it does so quickly."},
          {Kind::section, "Units"},
          {Kind::tableRow, "Temperature|°C or °F"},
          {Kind::tableRow, "Air pressure|hPa, mmHg or inHg"},
          {Kind::tableRow, "Wind|m/s, km/h, knots or Beaufort"},
          {Kind::tableRow, "Rain|mm or inches, by the hour and by the day"},
          {Kind::section, "The forecast line"},
          {Kind::paragraph, "From the change of pressure over three hours, the wind and the season the "
                            "console derives one sentence, "
                            "such as “Rain by evening”. It is right about four times in five. It knows "
                            "nothing of the weather elsewhere, "
                            "and that is why it can be right when the wide forecast is not."},
          {Kind::crossReference, "How to keep and export readings", 7}}},
        {"Alarms",
         {{Kind::paragraph, "The console can sound a soft bell when a value passes a limit that you choose."},
          {Kind::section, "Setting an alarm"},
          {Kind::step, "Turn the dial to the value and press it for two seconds."},
          {Kind::step, "Choose Above or Below, then the limit."},
          {Kind::step, "Choose when it may ring: always, by day, or never (a mark on the screen only)."},
          {Kind::section, "Useful limits"},
          {Kind::tableRow, "Frost in the garden|Temperature below 3 °C"},
          {Kind::tableRow, "Awning in|Wind above 11 m/s"},
          {Kind::tableRow, "Laundry in|Rain above 0 mm"},
          {Kind::tableRow, "Cellar damp|Humidity above 70 %"},
          {Kind::warning, "Note: An alarm is a convenience. Do not rely on it where a life or a valuable "
                          "thing depends on it."}}},
        {"Keeping and exporting readings",
         {{Kind::paragraph, "The console keeps a reading every minute for a month and every ten minutes for "
                            "two years. When the memory "
                            "is full, the oldest readings make room."},
          {Kind::section, "Export to a computer"},
          {Kind::step, "Connect the console to the computer with its cable."},
          {Kind::step, "Open the drive named TERN3. There is one CSV file for every month."},
          {Kind::step, "Copy what you need. Nothing on the drive can be changed from the computer."},
          {Kind::section, "The columns of a file"},
          {Kind::tableRow, "time|UTC, year-month-day hour:minute"},
          {Kind::tableRow, "temp, hum|°C and percent, two decimals"},
          {Kind::tableRow, "press|hPa at sea level"},
          {Kind::tableRow, "wind, gust, dir|m/s, m/s and degrees from north"},
          {Kind::tableRow, "rain|mm since the last line"},
          {Kind::webLink, "https://www.tern-weather.example/csv"}}},
        {"Care and maintenance",
         {{Kind::paragraph, "Twice a year, in spring and in autumn, is enough."},
          {Kind::section, "Cleaning"},
          {Kind::step, "Lift the rain funnel off and rinse it; remove leaves and spiders."},
          {Kind::step, "Wipe the solar panel with a wet cloth, without soap."},
          {Kind::step, "Blow dust out of the thermometer’s shield from below."},
          {Kind::step, "Spin the wind cups. They should run on for at least ten seconds."},
          {Kind::section, "Replacing the cell"},
          {Kind::step, "Take the unit down and indoors and let it dry."},
          {Kind::step, "Loosen the two screws beside the button and draw out the tray."},
          {Kind::step, "Replace the cell, type 18500 with 3.2 V, with the plus sign toward the lamp."},
          {Kind::step, "Close the tray; the gasket must lie flat all around."},
          {Kind::warning, "Caution: Use only cells with a protective circuit. Others can catch fire."}}},
        {"Troubleshooting",
         {{Kind::paragraph, "Most faults have a simple cause. If none of these helps, please write to us."},
          {Kind::section, "Table of faults"},
          {Kind::tableRow,
           "The console shows “Listening”|Press the button under the mast unit; come closer than 150 m"},
          {Kind::tableRow, "Rain stays at zero|The funnel is blocked: clean it (chapter 8)"},
          {Kind::tableRow,
           "Temperature is too high at noon|The shield needs moving air: mount the unit higher"},
          {Kind::tableRow, "Wind direction is off|Set north again (chapter 3, step 5)"},
          {Kind::tableRow, "The lamp blinks red|The cell is empty: two sunny days, or replace it"},
          {Kind::tableRow, "The screen shows half a picture|Hold Back for ten seconds; nothing is lost"},
          {Kind::section, "Support"},
          {Kind::paragraph, "Tell us the number on the sticker under the console and what the screen shows. "
                            "A real person answers, "
                            "usually within a day."},
          {Kind::webLink, "https://www.tern-weather.example/support"}}},
        {"Appendix: technical data",
         {{Kind::section, "Measuring"},
          {Kind::tableRow, "Temperature|-40 to +60 °C, ±0.2 °C"},
          {Kind::tableRow, "Humidity|0 to 100 %, ±2 %"},
          {Kind::tableRow, "Air pressure|850 to 1100 hPa, ±0.5 hPa"},
          {Kind::tableRow, "Wind|0 to 60 m/s, ±3 %"},
          {Kind::tableRow, "Rain|0.2 mm resolution, ±4 %"},
          {Kind::section, "Radio and power"},
          {Kind::tableRow, "Radio|868 MHz, 10 mW, range 150 m in the open"},
          {Kind::tableRow, "Console|5 V, 0.4 W; 30 hours without a cable"},
          {Kind::tableRow, "Mast unit|Solar, 90 days without sun"},
          {Kind::section, "Overview of versions"},
          {Kind::paragraph, "This manual describes firmware 3.4. Earlier versions lack the sentence of the "
                            "forecast and the alarm for "
                            "humidity; an update is free and takes two minutes."},
          {Kind::crossReference, "Back to the introduction", 1}}},
    };
    return chapters;
}

} // namespace samples
