// Many spectra of the data list overlaid, each with its shift and gain, and the settings file of
// that arrangement.
#pragma once

#include <string>
#include <vector>

#include "tavrin/dl_multispec.h"
#include "tavrin/image_header.h"

class CMultiSpecDisp {
public:
    CMultiSpecDisp();
    ~CMultiSpecDisp();
    CMultiSpecDisp(const CMultiSpecDisp&) = delete;
    CMultiSpecDisp& operator=(const CMultiSpecDisp&) = delete;

    // The items of the spectra whose DataId lies in lowest..highest (-1: 0 and 0x7FFFFFFF), a
    // two-way spectrum twice; values of the old list kept by ID and ramp. `id` is selected (a
    // missing one falls back to the current item).
    void Initialise(int32_t id, int32_t lowest, int32_t highest);
    // The default record and no items, old or new.
    void Reset();
    // Ends a run; `release` frees the item list, else it is kept for the next Initialise.
    void Finish(bool release);
    // Copies `src` into `dst` with its own copy of the items. False after 32769.
    bool CopyParamsAndAllocateMem(wint_MultiSpecParamType* dst, const wint_MultiSpecParamType* src);
    bool SelectedForDisplay(const MultiSpecParam_ItemType& item) const;
    double ConvertX(int i, double x) const;
    double ConvertY(int i, double y) const;
    int32_t GetLowestID(const wint_MultiSpecParamType* p) const;
    int32_t GetHighestID(const wint_MultiSpecParamType* p) const;
    // Draws the selected and matched items in frame store `vfs` (negative: the one of the run).
    void MultiPlot(int vfs);
    // The settings file; 1 on success, 0 on failure.
    int SaveMultiSpecData(const char* path);
    int LoadMultiSpecData(const char* path);

    wint_MultiSpecParamType& Param() { return param_; }
    MultiSpecParam_ItemType* Items() { return items_.data(); }
    int ItemCount() const { return static_cast<int>(items_.size()); }
    // The reference AcqMode and DataSource of the last MatchSpectra.
    uint32_t ReferenceAcqMode() const { return refAcqMode_; }
    uint32_t ReferenceDataSource() const { return refDataSource_; }
    void MatchSpectra(wint_MultiSpecParamType* p);

private:
    static void InitMultiSpecParamType(wint_MultiSpecParamType* p);
    void SetItemParams(MultiSpecParam_ItemType* item, const ImageHeaderType* spectrum, bool second);
    int GetIndexFromId(int32_t id) const;
    int GetMax_np() const;
    void SyncParam();
    void DrawLegends();
    // The samples of item i: first index and count within its spectrum; false when it is gone.
    bool GetSpec_Nx_Nx1_Ofs(int i, const ImageHeaderType** spectrum, int* from, int* count) const;

    wint_MultiSpecParamType param_{};
    std::vector<MultiSpecParam_ItemType> items_;
    std::vector<MultiSpecParam_ItemType> oldItems_;
    int returnStore_ = -1;
    uint32_t refAcqMode_ = 0, refDataSource_ = 0;
};

// The text of the direction of a curve (see multispec.cpp).
const char* CurveDirection(const ImageHeaderType* spectrum);
CMultiSpecDisp* MultiSpecDisp();
void ResetMultiSpecState();
