// The field tables of the records a script can set field by field (name=value) and read.
#pragma once

#include <cstddef>
#include <type_traits>

#include "script_values.h"
#include "tavrin/dl_elastic_modulus.h"

template <typename M>
constexpr RecordField::Kind FieldKindOf()
{
    using T = std::remove_cv_t<M>;
    if constexpr (std::is_array_v<T>) return RecordField::Text;
    else if constexpr (std::is_same_v<T, int8_t>) return RecordField::I8;
    else if constexpr (std::is_same_v<T, uint8_t>) return RecordField::U8;
    else if constexpr (std::is_same_v<T, int16_t>) return RecordField::I16;
    else if constexpr (std::is_same_v<T, uint16_t>) return RecordField::U16;
    else if constexpr (std::is_same_v<T, int32_t>) return RecordField::I32;
    else if constexpr (std::is_same_v<T, uint32_t>) return RecordField::U32;
    else if constexpr (std::is_same_v<T, float>) return RecordField::F32;
    else return RecordField::F64;
}

#define TAVRIN_RECORD_FIELD(T, m) \
    RecordField { #m, offsetof(T, m), sizeof(T::m), FieldKindOf<decltype(T::m)>() }

template <> const RecordFields* FieldsOf<wint_ColourParamType>();
template <> const RecordFields* FieldsOf<wint_CantileverParamType>();
template <> const RecordFields* FieldsOf<wint_SPMCalType>();
template <> const RecordFields* FieldsOf<TvRect>();
template <> const RecordFields* FieldsOf<wint_StartUpStringType>();
template <> const RecordFields* FieldsOf<wint_SpecExportParamType>();
template <> const RecordFields* FieldsOf<wint_DisplayParamType>();
template <> const RecordFields* FieldsOf<C3DParam>();
template <> const RecordFields* FieldsOf<wint_SelectItemCol>();
template <> const RecordFields* FieldsOf<wint_SubtBckgrndParamType>();
// plot and spectra
template <> const RecordFields* FieldsOf<wint_PlotParamType>();
template <> const RecordFields* FieldsOf<wint_SmoothSpecParamType>();
template <> const RecordFields* FieldsOf<wint_DiffSpecParamType>();
// frequency domain
template <> const RecordFields* FieldsOf<wint_FFTWinParamType>();
// particles
template <> const RecordFields* FieldsOf<wint_ParticleParamType>();
template <> const RecordFields* FieldsOf<wint_ParticleSttsParamType>();
template <> const RecordFields* FieldsOf<wint_LMCantileverImageParamType>();
template <> const RecordFields* FieldsOf<wint_CITSDispParamType>();
// the mesh
template <> const RecordFields* FieldsOf<MeshInfoType>();
template <> const RecordFields* FieldsOf<wint_MeshParamType>();
// elastic modulus
template <> const RecordFields* FieldsOf<wint_ElasticModulusType>();
