/* Tavrin Processing: the one record of every image, spectrum, profile and histogram.
 *
 * The first 6090 bytes of ImageHeaderType are exactly what a file holds: a save copies them
 * into the file and a load reads them back, so this layout is the file format and must not
 * change. Every field stands at its documented offset; reserved ranges are kept as byte arrays
 * and carried unchanged.
 *
 * Behind the stored part follows the run-time part, never written to a file:
 *   SPSOwnerId, DataId, PixHandle, PixData, Next, Prev   (as the 32-bit system had them)
 *   FFTDataPtr, CITSHeaderPtr, SPSRefDataPtr, LMCHitDataPtr (64-bit: the real block pointers)
 *   LMCHitDataCx, LMCHitDataCy                              (the size of the hit data)
 *
 * 64-bit note. Four stored fields once held a memory address: FFTData, CITSHeader, SPSRefData
 * and LMCThresholdHitDataPtr. They keep their 4 bytes in the stored part, and there they mean
 * only "a block of this kind exists" (non-zero) or not (zero) - which is all a file ever reads
 * from them. The addresses themselves live in the run-time pointers above. The library sets
 * both together; a host must treat the stored words as flags and read the pointers behind.
 *
 * Pixels of an image: PixData points to nx * ny unsigned 16-bit codes, row 0 first.
 * Samples of a spectrum: PixData points to nx * 8 bytes, nx f32 Y values then nx f32 X values
 * (PixHandle is the block's handle word in both cases).
 */
#ifndef TAVRIN_IMAGE_HEADER_H
#define TAVRIN_IMAGE_HEADER_H

#include "tavrin/types.h"

#define TAVRIN_HEADER_STORED_BYTES 6090

#pragma pack(push, 1)

/* Stored local date, 5 bytes. dayofweek counts from 0 = Sunday. */
typedef struct DosDateType {
    uint8_t day;
    uint8_t month;
    uint16_t year;
    uint8_t dayofweek;
} TAVRIN_PACKED DosDateType;

/* Stored local time, 4 bytes; hsecond is milliseconds / 10. */
typedef struct DosTimeType {
    uint8_t hour;
    uint8_t minute;
    uint8_t second;
    uint8_t hsecond;
} TAVRIN_PACKED DosTimeType;

struct CITSHeaderType;

typedef struct ImageHeaderType {
    int16_t RevNo;                  /*    0 */
    char OldFileName[26];           /*    2 */
    float MontageShiftX;            /*   28 */
    float MontageShiftY;            /*   32 */
    int16_t MontageNx;              /*   36 */
    int16_t MontageNy;              /*   38 */
    uint32_t MontageOrder;          /*   40 */
    int16_t MontageImageNo;         /*   44 */
    uint32_t MontageValid;          /*   46 */
    uint8_t MontageEnable;          /*   50 */
    uint8_t Reserved51[31];         /*   51 */
    int16_t nx;                     /*   82 */
    int16_t ny;                     /*   84 */
    float ImageSizeX;               /*   86 */
    float ImageSizeY;               /*   90 */
    float Zlo;                      /*   94 */
    float Zhi;                      /*   98 */
    int16_t RawLow;                 /*  102 */
    int16_t RawHigh;                /*  104 */
    float DataScale;                /*  106 */
    char Title[40];                 /*  110 */
    char GeneralText[5][40];        /*  150 */
    uint8_t ProcessList[49];        /*  350 */
    uint8_t ProcessListOff;         /*  399 */
    int16_t SPMData;                /*  400 */
    float BiasVoltage;              /*  402 */
    float TunnelCurrent;            /*  406 */
    uint8_t Reserved410;            /*  410 */
    uint8_t OldImageType;           /*  411 */
    DosDateType CreatedDate;        /*  412 */
    DosDateType SavedDate;          /*  417 */
    DosTimeType CreatedTime;        /*  422 */
    DosTimeType SavedTime;          /*  426 */
    uint8_t ImageLUT[256];          /*  430 */
    int32_t FFTData;                /*  686  flag: FFTDataPtr is set */
    uint16_t ColourImage;           /*  690 */
    uint8_t OldDataKind;            /*  692 */
    int16_t OldAdcOffset;           /*  693 */
    uint16_t OldAdcGain;            /*  695 */
    uint16_t OldIDivider;           /*  697 */
    uint8_t Reserved699;            /*  699 */
    int8_t Compression;             /*  700 */
    int8_t BitsPerPixel;            /*  701 */
    uint32_t CITSHeader;            /*  702  flag: CITSHeaderPtr is set */
    float BiasVoltage2;             /*  706 */
    int16_t STSPosX;                /*  710 */
    int16_t STSPosY;                /*  712 */
    uint8_t SelPointX[10];          /*  714 */
    uint8_t SelPointY[10];          /*  724 */
    float ScanSpeedX;               /*  734 */
    float ScanSpeedY;               /*  738 */
    float OldGainX;                 /*  742 */
    float OldOffsetX;               /*  746 */
    float OldGainY;                 /*  750 */
    float OldOffsetY;               /*  754 */
    uint8_t Reserved758[24];        /*  758 */
    int16_t ScanMode;               /*  782 */
    float ClockSpeed;               /*  784 */
    float ImageAngle;               /*  788 */
    float FeedbackFilter;           /*  792 */
    float ZFilter;                  /*  796 */
    float PreampFilter;             /*  800 */
    float PreampGain;               /*  804 */
    int16_t LoopGain;               /*  808 */
    float ImageOffsetX;             /*  810 */
    float ImageOffsetY;             /*  814 */
    float ReservedParam[5];         /*  818 */
    uint32_t AcqMode;               /*  838 */
    int16_t OldAdcSrc;              /*  842 */
    uint32_t OldBlockFlag;          /*  844 */
    char FileName[260];             /*  848 */
    uint32_t OldAdcSel;             /* 1108 */
    uint32_t Reserved1112;          /* 1112 */
    float OldOscFrequency;          /* 1116 */
    uint16_t OldLowPass;            /* 1120 */
    uint16_t OldHighPass;           /* 1122 */
    uint16_t Reserved1124;          /* 1124 */
    uint16_t OldOscEnable;          /* 1126 */
    uint16_t Reserved1128;          /* 1128 */
    uint32_t AFMMode;               /* 1130 */
    uint16_t OldRmsDcOutput;        /* 1134 */
    uint8_t Reserved1136[10];       /* 1136 */
    uint32_t OldParamA;             /* 1146 */
    uint32_t MFMFlag;               /* 1150 */
    uint32_t AdcSrc;                /* 1154 */
    uint16_t OldLapFlag;            /* 1158 */
    uint32_t MapType;               /* 1160 */
    double OldOutputAmp;            /* 1164 */
    double OldCenterFreq;           /* 1172 */
    float OldPhaseShift;            /* 1180 */
    uint8_t Reserved1184[2];        /* 1184 */
    uint16_t OldPhasePolarity;      /* 1186 */
    uint16_t OldPllExcitation;      /* 1188 */
    uint16_t OldAddOsc;             /* 1190 */
    uint16_t OldRmsFilter;          /* 1192 */
    uint16_t Reserved1194;          /* 1194 */
    uint16_t OldLoopGain2;          /* 1196 */
    uint16_t Reserved1198;          /* 1198 */
    uint16_t OldBeatNoise;          /* 1200 */
    uint16_t Reserved1202;          /* 1202 */
    uint32_t OldDynRange;           /* 1204 */
    float OldPeakFreq;              /* 1208 */
    float OldQFactor;               /* 1212 */
    int32_t BiasSelect;             /* 1216 */
    uint8_t Reserved1220[6];        /* 1220 */
    uint8_t LutRed[256];            /* 1226 */
    uint8_t LutGreen[256];          /* 1482 */
    uint8_t LutBlue[256];           /* 1738 */
    int32_t SubRevNo;               /* 1994 */
    uint32_t ImType1;               /* 1998 */
    uint32_t DataSource;            /* 2002 */
    uint32_t DisplayMode;           /* 2006 */
    uint64_t CreatedFileTime;       /* 2010 */
    uint64_t SavedFileTime;         /* 2018 */
    uint8_t ProfileBlock[254];      /* 2026  head of wint_ProfileType */
    uint8_t View3DBlock[446];       /* 2280 */
    float Brightness;               /* 2726 */
    float Contrast;                 /* 2730 */
    int16_t ScanRevNo;              /* 2734 */
    uint8_t Reserved2736[4];        /* 2736 */
    int16_t ExtractX1;              /* 2740 */
    int16_t ExtractX2;              /* 2742 */
    int16_t ExtractY1;              /* 2744 */
    int16_t ExtractY2;              /* 2746 */
    uint32_t DataType;              /* 2748 */
    uint32_t AdcOffset;             /* 2752 */
    uint16_t AdcGain;               /* 2756 */
    uint16_t IDivider;              /* 2758 */
    float Gamma;                    /* 2760 */
    int16_t nSPSRefData;            /* 2764 */
    uint32_t SPSRefData;            /* 2766  flag: SPSRefDataPtr is set */
    int16_t RouteEndX;              /* 2770 */
    int16_t RouteEndY;              /* 2772 */
    int16_t ScanDirection;          /* 2774 */
    uint16_t Reserved2776;          /* 2776 */
    int16_t LIAModel;               /* 2778 */
    uint16_t LIAEnable;             /* 2780 */
    uint8_t Reserved2782[4];        /* 2782 */
    double LIASensitivity;          /* 2786 */
    double LIATimeConstant;         /* 2794 */
    double LIARefPhase;             /* 2802 */
    double LIAModFrequency;         /* 2810 */
    double LIAModAmplitude;         /* 2818 */
    uint32_t LIAOutputType;         /* 2826 */
    uint8_t Reserved2830[22];       /* 2830 */
    int16_t LIARefSource;           /* 2852 */
    uint8_t Reserved2854[56];       /* 2854 */
    uint32_t Reserved2910;          /* 2910 */
    int16_t TempEnable;             /* 2914 */
    int16_t TempHolder;             /* 2916 */
    int16_t TempUnit;               /* 2918 */
    int16_t TempStop;               /* 2920 */
    float TempGainP;                /* 2922 */
    int32_t TempGainI;              /* 2926 */
    int32_t TempGainD;              /* 2930 */
    float TempOffset;               /* 2934 */
    float TempSpecimen;             /* 2938 */
    float TempTarget;               /* 2942 */
    uint16_t AFMSignalEnable;       /* 2946 */
    double AFMConversion;           /* 2948 */
    double CantileverAmplitude;     /* 2956 */
    double StdFrequencySignal;      /* 2964 */
    uint8_t TwistForceOn;           /* 2972 */
    uint8_t TwistForceCalib;        /* 2973 */
    double LMCScale;                /* 2974 */
    double TwistK1;                 /* 2982 */
    double TwistK2;                 /* 2990 */
    double TwistK3;                 /* 2998 */
    double TwistK4;                 /* 3006 */
    uint32_t LMCMode;               /* 3014 */
    double LMFrequency;             /* 3018 */
    double LMAmplitude;             /* 3026 */
    float PeakFrequency;            /* 3034 */
    float QFactor;                  /* 3038 */
    uint16_t NewOscBlock;           /* 3042 */
    int16_t OscEnable;              /* 3044 */
    int16_t AddOsc;                 /* 3046 */
    int16_t LapFlag;                /* 3048 */
    int16_t RmsDcOutput;            /* 3050 */
    int16_t RmsFilter;              /* 3052 */
    double CenterFrequency;         /* 3054 */
    double OutputAmp;               /* 3062 */
    double PhaseShifter;            /* 3070 */
    int16_t PhasePolarity;          /* 3078 */
    int16_t PllExcitation;          /* 3080 */
    int16_t BeatNoise;              /* 3082 */
    int16_t LowPassFilter;          /* 3084 */
    int16_t HighPassFilter;         /* 3086 */
    int16_t PllLoopGain;            /* 3088 */
    int16_t DynamicRange;           /* 3090 */
    uint16_t FeedbackPolarity;      /* 3092 */
    int16_t BandPassOn;             /* 3094 */
    uint8_t Reserved3096[6];        /* 3096 */
    int16_t PllOn;                  /* 3102 */
    int16_t AgcOn;                  /* 3104 */
    int16_t PllFilterKind;          /* 3106 */
    int16_t ABSignalGain;           /* 3108 */
    int16_t Reserved3110;           /* 3110 */
    int32_t BandPassFilter;         /* 3112 */
    int16_t DynamicRangeCode;       /* 3116 */
    float PhaseDetectorGain;        /* 3118 */
    double AgcReference;            /* 3122 */
    int16_t AgcGain;                /* 3130 */
    int16_t LagLeadIndex;           /* 3132 */
    uint8_t Reserved3134[28];       /* 3134 */
    double FitFrequency;            /* 3162 */
    double FitSpringConstant;       /* 3170 */
    double FitQ;                    /* 3178 */
    double FitNoise;                /* 3186 */
    double FitConversion;           /* 3194 */
    uint8_t Reserved3202[32];       /* 3202 */
    uint32_t Reserved3234;          /* 3234 */
    double FitTemperature;          /* 3238 */
    uint8_t LMCThreshold1On;        /* 3246 */
    uint8_t LMCThreshold2On;        /* 3247 */
    double LMCThreshold1;           /* 3248 */
    double LMCThreshold2;           /* 3256 */
    uint32_t LMCThreshold1Dir;      /* 3264 */
    uint32_t LMCThreshold2Dir;      /* 3268 */
    uint32_t LMCSearchFrom;         /* 3272 */
    uint32_t LMCSearchTo;           /* 3276 */
    uint8_t Reserved3280[28];       /* 3280 */
    int16_t CrossSectionTopo;       /* 3308 */
    uint32_t Reserved3310;          /* 3310 */
    uint32_t Reserved3314;          /* 3314 */
    uint8_t Reserved3318[8];        /* 3318 */
    int16_t LMCPoints;              /* 3326 */
    uint32_t LMCSweepType;          /* 3328 */
    uint32_t Reserved3332;          /* 3332 */
    uint8_t Reserved3336[56];       /* 3336 */
    uint32_t LMCThresholdHitDataPtr;/* 3392  flag: LMCHitDataPtr is set */
    uint32_t Reserved3396;          /* 3396 */
    char OldSpare[32];              /* 3400 */
    char SpecXTitle[80];            /* 3432 */
    char SpecYTitle[80];            /* 3512 */
    uint8_t Reserved3592[2496];     /* 3592 */
    uint16_t CITSDisplayOption;     /* 6088 */

    /* ---- run-time part, never stored ---- */
    int32_t SPSOwnerId;             /* DataId of the image this spectrum refers to; -1 none */
    uint32_t DataId;                /* unique number of the item */
    uint32_t PixHandle;             /* handle word of the pixel or sample block */
    uint16_t* PixData;              /* pixels (image) or f32 samples (spectrum) */
    struct ImageHeaderType* Next;   /* data list links */
    struct ImageHeaderType* Prev;
    float* FFTDataPtr;              /* complex FFT block: nx * ny pairs of f32 (real, imaginary) */
    struct CITSHeaderType* CITSHeaderPtr;    /* mapping set */
    struct ImageHeaderType* SPSRefDataPtr;   /* first attached spectrum */
    uint8_t* LMCHitDataPtr;         /* threshold hit data, cx * cy * 74 bytes */
    int32_t LMCHitDataCx;           /* its dimensions */
    int32_t LMCHitDataCy;
} TAVRIN_PACKED ImageHeaderType;

#pragma pack(pop)

#ifdef __cplusplus
static_assert(offsetof(ImageHeaderType, CITSDisplayOption) + 2 == TAVRIN_HEADER_STORED_BYTES,
              "stored part of ImageHeaderType must be 6090 bytes");
static_assert(sizeof(DosDateType) == 5 && sizeof(DosTimeType) == 4, "DOS date and time");
#endif

#endif
