// Particle analysis of an image: the working bilevel item beside its source, its objects and
// their statistics, and the commands of the two dialog pages.
//
// The module keeps one source (the item that was current when the band page opened), one
// bilevel item made from it, the band it was made with, the connectivity (4 at the start), the
// selected object and the statistics of the last measurement. Items are held with their
// DataId, so an item the user erased meanwhile is seen as gone.
#pragma once

#include <cstdint>

#include "image/particle_measure.h"
#include "tavrin/dl_particles.h"
#include "tavrin/image_header.h"

// History codes of the commands.
constexpr int kIsolateCode = 109;
constexpr int kBilevelCode = 110;
constexpr int kErodeCode = 111;
constexpr int kDilateCode = 112;

// The bilevel test of an item: every code 0 or 65535. The result is remembered with the
// item's DataId, and a second test of the same item answers it without looking (and without
// a report). A failed test with `report` gives 33559 "Image not bilevel". An item without
// pixels is not bilevel.
bool IsBilevel(const ImageHeaderType* item, bool report);
// Forgets the remembered result (after pixels of an item changed other than by this module).
void ForgetBilevelTest();

// A new item behind `source` whose codes are 65535 where the source's grey level
// (ImageLUT[code >> 8]) lies in low..high and 0 elsewhere, with the identity ImageLUT. Logs
// "Generate Bilevel Image '%s'\n" with the source's title, adds history code 110 to the
// source, shows the new item. The current item stays. Null on failure (reported).
ImageHeaderType* MakeBilevel(ImageHeaderType* source, int low, int high);

// The connectivity of the fills, 4 or 8.
int ParticleConnectivity();
// 4 to 8 and back; logs "Set connectivity to %d.\n". Nothing is measured again.
void ToggleConnectivity();

// The working items, or null when none (or erased meanwhile).
ImageHeaderType* ParticleSourceItem();
ImageHeaderType* ParticleBilevelItem();
// The pixel size and connectivity that objects of `item` are measured with.
MeasureFrame ParticleFrame(const ImageHeaderType* item);

// Frees the statistics; with no item 33536; with a bilevel one, measures all objects (the
// item shown first when no image is on display), builds the display order and sorts it,
// clears the file name and drops a selection beyond the list.
void RefreshStatistics(ImageHeaderType* item);
// The statistics of the last measurement and the selected object (-1 none).
const ParticleStats& CurrentParticleStats();
int SelectedParticle();

// The dialog pages (particle_pages.cpp).
int16_t GetParticleParam(wint_ParticleParamType* param);
void SetParticleParam(const wint_ParticleParamType* param);
void GetParticleSttsParam(wint_ParticleSttsParamType* param, int16_t init, int16_t fin);
void SetParticleSttsParam(const wint_ParticleSttsParamType* param);
int32_t ParticleSttsGetDesc(int16_t row, char texts[5][TV_PARTICLE_DESC_TEXT]);
// The histogram of the stored record's kind and bins (particle_histogram.cpp).
void DisplayParticleHistogram();

// The commands on the bilevel item (particle_commands.cpp).
void ErodeBilevelImage();
void DilateBilevelImage();
int32_t IsolateBilevelImage();
void ShootObjects();
void ChooseParticle();
int32_t ParticlePointerCallback(int32_t handle, int32_t x, int32_t y, int32_t status);

void ResetParticleState();
