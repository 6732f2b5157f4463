// The revision constants of this release.
#pragma once

// Processing: the text, the sub-revision and the dotted form.
inline constexpr const char* kProcessingRevision = "310";
inline constexpr int kProcessingSubRevision = 18;
inline constexpr const char* kProcessingSubRevisionText = "18";
inline constexpr const char* kProcessingVersion = "3.10";

// Scanning: the header revision of the image record.
inline constexpr const char* kScanningRevisionText = "700";
inline constexpr int kScanningRevision = 700;
inline constexpr int kScanningSubRevision = 42;
inline constexpr const char* kScanningSubRevisionText = "42";
inline constexpr const char* kScanningVersion = "7.00";
