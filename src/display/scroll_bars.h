// The host's sliders: the library opens one, two or three bars under a control id, and the
// host reports each move with the id, a state word and the values. Each id reaches the command
// that opened it through one table.
#pragma once

#include <cstdint>

#include "tavrin/ap_callbacks.h"

// What a command does with a move of its sliders: the state word and the values of the bars.
using SliderMove = int (*)(int state, const float* values, int count);

// Registers the command of an id (null: none); the table holds a few ids at a time.
void SetSliderCommand(int id, SliderMove move);
SliderMove FindSliderCommand(int id);

// Opens one, two or three bars; a position of (0, 0) goes to the host as (-1, -1), its default.
void OpenScrollBar1(wint_ScrollBarParamType* bar, int id);
void OpenScrollBar2(wint_ScrollBarParamType* bar1, wint_ScrollBarParamType* bar2, int id, int flag);
void OpenScrollBar3(wint_ScrollBarParamType* bar1, wint_ScrollBarParamType* bar2, wint_ScrollBarParamType* bar3,
                    int id, int flag);

// The moves of the host, routed by id; an id without a command is reported with its values.
int ScrollBar1Moved(int id, int state, float value);
int ScrollBar2Moved(int id, int state, float value1, float value2);
int ScrollBar3Moved(int id, int state, float value1, float value2, float value3);
int HorzVertScrollBarMoved(int id, int state, float value1, float value2);

void ResetScrollBars();
