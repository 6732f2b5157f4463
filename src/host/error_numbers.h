// Numbers of the error table. The numbering keeps its historical gaps: callers and readers of
// old logs rely on the numbers.
#pragma once

#include <cstdint>

enum ErrorNumber : uint16_t {
    ERR_NONE = 0,
    ERR_NO_MEMORY = 32769,                 // "Not enough memory"
    ERR_PROGRAM = 32771,                   // "Program error - %-70s"
    ERR_DISK_FULL = 32773,                 // "Not enough disk space"
    ERR_FILE_TOO_SHORT = 32774,            // "Data file too short"
    ERR_OPEN_FILE = 32776,                 // "Unable to open file"
    ERR_INVALID_HEADER = 32777,            // "Invalid header"
    ERR_CLOSING_FILE = 32778,
    ERR_WRITING = 32779,
    ERR_READING = 32780,
    ERR_INVALID_ENTRY = 32782,             // "Invalid data entry"
    ERR_ZERO_VALUE = 32783,                // "Zero data value not allowed"
    ERR_MESH_TOO_LARGE = 32788,
    ERR_LIGHT_INTENSITY = 32789,
    ERR_LOAD_WINDOW = 32790,
    ERR_SAVE_WINDOW = 32791,
    ERR_READ_CONFIGURATION = 32794,        // "Error on reading configuration file"
    ERR_NO_MEMORY_IMAGE = 32797,           // "Not enough memory for image"
    ERR_NO_MEMORY_PROCESSING = 32798,      // "Not enough memory for current processing"
    ERR_INVALID_REVISION = 32807,          // "Data has invalid revision number for operation"
    ERR_COMMAND_LINE = 32816,              // "Command line - %-70s"
    ERR_CLOSING_FILE2 = 32820,             // "Error occurred on closing file"
    ERR_OPEN_FILE2 = 32821,                // "Unable to open file"
    ERR_READING2 = 32822,                  // "Error occurred while reading from input device"
    ERR_WRITING2 = 32823,                  // "Error occurred on writing to output device"
    ERR_PASTE_FORMAT = 32829,
    ERR_ONE_3D_VIEW = 32830,
    ERR_NO_MEMORY_THRESHOLD = 32831,       // "Not enough memory for Threshold Data"
    ERR_NO_SPECTRA = 33280,                // "No spectra in memory"
    ERR_SPEC_NOT_POWER_OF_2 = 33283,       // "Number of points in spectrum must be a power of 2"
    ERR_SPECTRA_LIMIT = 33284,             // "Exceeded maximum number of allowed spectra"
    ERR_RAMP_ONE_DIRECTION = 33289,        // "Spectroscopy ramp is one direction only"
    ERR_NO_IMAGES = 33536,                 // "No images in memory"
    ERR_IMAGE_TOO_LARGE = 33537,           // "Image too large for this function"
    ERR_NOT_FFT = 33538,                   // "Image is not of type FFT"
    ERR_WINDOW_SIZE = 33539,               // "Window wrong size/not present"
    ERR_WINDOW_EXISTS = 33540,             // "Window already exists"
    ERR_NO_WINDOW = 33541,
    ERR_NOT_POWER_OF_2 = 33542,
    ERR_FFT_IMAGE = 33543,                 // "Unable to perform this function on image of type FFT"
    ERR_ALREADY_THIS_SIZE = 33545,         // "Image is already this size - can not interpolate"
    ERR_NOT_MAPPING = 33553,               // "Image is not SPS Mapping type"
    ERR_NO_MAPPING_IMAGES = 33554,         // "No current images in SPS Mapping data set"
    ERR_MAPPING_IMAGE = 33555,             // "Unable to perform this function on image of type SPS Mapping "
    ERR_NOT_BILEVEL = 33559,               // "Image not bilevel"
    ERR_TOO_MANY_PARTICLES = 33560,        // "Too many particles" (kept in the table, not raised)
    ERR_NO_PARTICLES = 33561,              // "No particles in image"
    ERR_WRONG_IMAGE_TYPE = 33562,
    ERR_REPLAY_PATH = 33563,               // "Invalid path specified for replay sequence"
    ERR_TIGA = 36096,                      // " Error with TIGA %x"
    ERR_APPLICATION = 36865,               // "Application Error: %-70s"
    ERR_HELP_FILE = 36869,
    ERR_MULTISPEC_LOAD = 36880,
    ERR_MULTISPEC_SAVE = 36881,
    ERR_MEASURE_EXPORT = 36882,
};
