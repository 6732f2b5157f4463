#include "display/scroll_bars.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"

namespace {

constexpr int kSliderIds = 8;

struct SliderRow {
    int id;
    SliderMove move;
};
SliderRow g_sliders[kSliderIds];

void DefaultPlace(wint_ScrollBarParamType* bar)
{
    if (bar && bar->PosX == 0 && bar->PosY == 0) bar->PosX = bar->PosY = -1;
}

} // namespace

void SetSliderCommand(int id, SliderMove move)
{
    for (SliderRow& row : g_sliders)
        if (row.id == id && row.move) {
            row.move = move;
            return;
        }
    if (!move) return;
    for (SliderRow& row : g_sliders)
        if (!row.move) {
            row = {id, move};
            return;
        }
    ProgramError("SetSliderCommand %d", id);
}

SliderMove FindSliderCommand(int id)
{
    for (const SliderRow& row : g_sliders)
        if (row.move && row.id == id) return row.move;
    return nullptr;
}

void OpenScrollBar1(wint_ScrollBarParamType* bar, int id)
{
    DefaultPlace(bar);
    Ap.ap_ScrollBar1(bar, static_cast<uint16_t>(id));
}

void OpenScrollBar2(wint_ScrollBarParamType* bar1, wint_ScrollBarParamType* bar2, int id, int flag)
{
    DefaultPlace(bar1);
    DefaultPlace(bar2);
    Ap.ap_ScrollBar2(bar1, bar2, static_cast<uint16_t>(id), static_cast<uint16_t>(flag));
}

void OpenScrollBar3(wint_ScrollBarParamType* bar1, wint_ScrollBarParamType* bar2, wint_ScrollBarParamType* bar3,
                    int id, int flag)
{
    DefaultPlace(bar1);
    DefaultPlace(bar2);
    DefaultPlace(bar3);
    Ap.ap_ScrollBar3(bar1, bar2, bar3, static_cast<uint16_t>(id), static_cast<uint16_t>(flag));
}

int ScrollBar1Moved(int id, int state, float value)
{
    if (SliderMove move = FindSliderCommand(id)) return move(state, &value, 1);
    ProgramError("dl_Horz_Scroll_Bar1_Callback (%d,%d,%f)", id, state, static_cast<double>(value));
    return 0;
}

int ScrollBar2Moved(int id, int state, float value1, float value2)
{
    const float values[2] = {value1, value2};
    if (SliderMove move = FindSliderCommand(id)) return move(state, values, 2);
    ProgramError("dl_Horz_Scroll_Bar2_Callback (%d,%d,%f,%f)", id, state, static_cast<double>(value1),
                 static_cast<double>(value2));
    return 0;
}

int ScrollBar3Moved(int id, int state, float value1, float value2, float value3)
{
    const float values[3] = {value1, value2, value3};
    if (SliderMove move = FindSliderCommand(id)) return move(state, values, 3);
    ProgramError("dl_Horz_Scroll_Bar3_Callback (%d,%d,%f,%f %f)", id, state, static_cast<double>(value1),
                 static_cast<double>(value2), static_cast<double>(value3));
    return 0;
}

int HorzVertScrollBarMoved(int id, int state, float value1, float value2)
{
    ProgramError("dl_Horz_Vert_Scroll_Bar_Callback (%d,%d,%f,%f)", id, state, static_cast<double>(value1),
                 static_cast<double>(value2));
    return 0;
}

void ResetScrollBars()
{
    for (SliderRow& row : g_sliders) row = {};
}
