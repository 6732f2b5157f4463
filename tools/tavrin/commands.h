// The commands of the command-line host. Each answers the exit status: 0 success, 1 when the
// command reported an error, 2 for a usage error.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

using Args = std::vector<std::string>;

int CommandInfo(const Args& args);
int CommandPixels(const Args& args);
int CommandConvert(const Args& args);
int CommandRender(const Args& args);
int CommandRun(const Args& args);
int CommandDemo(const Args& args);
int CommandGeom(const Args& args);
int CommandFilter(const Args& args);
int CommandLevel(const Args& args);
int CommandPlot(const Args& args);
int CommandSpec(const Args& args);
int CommandLut(const Args& args);
int CommandHistogram(const Args& args);
int CommandMath(const Args& args);
int CommandMath2(const Args& args);
int CommandNormalise(const Args& args);
int CommandFft(const Args& args);
int CommandParticles(const Args& args);
int CommandMap(const Args& args);
int CommandMeasure(const Args& args);

// The script's forms of the measuring object: open it on the current image (1: with its
// mapping set), add a marker of a kind with its points "x,y,x,y,..." and a seed, draw and
// measure, write the text table.
int32_t ScriptMeasureInitialise(int32_t spectroscopy);
int32_t ScriptMeasureAdd(int32_t type, const char* points, int32_t seedX, int32_t seedY);
void ScriptMeasureDisplay();
int32_t ScriptMeasureExport(const char* path);
int CommandSpecFit(const Args& args);
int CommandSpecFFT(const Args& args);
int CommandMultiSpec(const Args& args);
int CommandAttached(const Args& args);
int CommandRegion(const Args& args);
int CommandReplace(const Args& args);
int CommandLattice(const Args& args);

// The script's forms of the kernel table entry points: the kernel as a text "v1,v2,...".
void ScriptGet3x3KernelParam(int16_t index, char* text);
void ScriptGet5x5KernelParam(int16_t index, char* text);
void ScriptGetEE3x3KernelParam(int16_t index, char* text);
void ScriptSet3x3KernelParam(int16_t index, const char* text);
void ScriptSet5x5KernelParam(int16_t index, const char* text);

// Opens the file for a spectrum command; answers its item, or null after a message on standard
// error when the file does not open or holds no spectrum.
struct ImageHeaderType;
const ImageHeaderType* OpenSpectrumForCommand(const char* command, const std::string& path);

// Prints the usage text to the stream.
void PrintUsage(FILE* out);
