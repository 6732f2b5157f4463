// The settings of the default plot and their record.
#include "display/display_param.h"
#include "display/fonts.h"
#include "display/plot.h"
#include "display/plot_spectrum.h"
#include "host/errors.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr float kMinTickFraction = 100.0f;

PlotSettings DefaultPlotSettings()
{
    PlotSettings s{};
    s.PlotWidth = 400;
    s.PlotHeight = 300;
    s.AutoAxes = 3;
    s.MinX = s.MinY = 0.0f;
    s.MaxX = s.MaxY = 100.0f;
    s.TickStepX = s.TickStepY = 10.0f;
    return s;
}

} // namespace

PlotSettings PlotParam = DefaultPlotSettings();

namespace {

// Reversed limits are swapped; the tick is at least a hundredth of the range.
void OrderAxis(float* lo, float* hi, float* tick)
{
    if (*lo > *hi) std::swap(*lo, *hi);
    const float least = (*hi - *lo) / kMinTickFraction;
    if (*tick < least) *tick = least;
}

} // namespace

void GetPlotParam(wint_PlotParamType* param)
{
    if (!param) {
        ProgramError("GetPlotParam");
        return;
    }
    std::memset(param, 0, sizeof *param);
    const PlotSettings& s = PlotParam;
    param->PlotWidth = s.PlotWidth, param->PlotHeight = s.PlotHeight;
    param->LogAxisX = s.LogAxisX, param->LogAxisY = s.LogAxisY;
    param->AutoAxes = s.AutoAxes;
    param->GridX = s.GridX, param->GridY = s.GridY, param->BoxAxes = s.BoxAxes;
    param->MinX = s.MinX, param->MinY = s.MinY, param->MaxX = s.MaxX, param->MaxY = s.MaxY;
    param->TickStepX = s.TickStepX, param->TickStepY = s.TickStepY;
    param->TitleColour = FontToRecord(NamedFont(FONT_PLOT_TITLE1), &param->TitleFont);
    param->AxisTitleColour = FontToRecord(NamedFont(FONT_PLOT_TITLE2), &param->AxisTitleFont);
    param->NumberColour = FontToRecord(NamedFont(FONT_PLOT_TITLE3), &param->NumberFont);
}

void SetPlotParam(const wint_PlotParamType* param)
{
    if (!param) {
        ProgramError("SetPlotParam");
        return;
    }
    wint_PlotParamType p;
    std::memcpy(&p, param, sizeof p);
    PlotSettings& s = PlotParam;
    s.PlotWidth = p.PlotWidth, s.PlotHeight = p.PlotHeight;
    s.LogAxisX = p.LogAxisX, s.LogAxisY = p.LogAxisY;
    s.AutoAxes = static_cast<uint16_t>(p.AutoAxes);
    s.GridX = p.GridX, s.GridY = p.GridY, s.BoxAxes = p.BoxAxes;
    s.MinX = p.MinX, s.MinY = p.MinY, s.MaxX = p.MaxX, s.MaxY = p.MaxY;
    s.TickStepX = p.TickStepX, s.TickStepY = p.TickStepY;
    OrderAxis(&s.MinX, &s.MaxX, &s.TickStepX);
    OrderAxis(&s.MinY, &s.MaxY, &s.TickStepY);
    FontFromRecord(NamedFont(FONT_PLOT_TITLE1), p.TitleFont, p.TitleColour);
    FontFromRecord(NamedFont(FONT_PLOT_TITLE2), p.AxisTitleFont, p.AxisTitleColour);
    FontFromRecord(NamedFont(FONT_PLOT_TITLE3), p.NumberFont, p.NumberColour);
}

SavedPlotSettings SavePlotSettings()
{
    return {PlotParam.LogAxisX, PlotParam.LogAxisY, PlotParam.BoxAxes, PlotParam.AutoAxes};
}

void RestorePlotSettings(const SavedPlotSettings& saved)
{
    PlotParam.LogAxisX = saved.LogAxisX;
    PlotParam.LogAxisY = saved.LogAxisY;
    PlotParam.BoxAxes = saved.BoxAxes;
    PlotParam.AutoAxes = saved.AutoAxes;
}

void ResetPlotState()
{
    PlotParam = DefaultPlotSettings();
    ResetPlotAreas();
}
