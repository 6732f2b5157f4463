// The 5-point and 9-point median commands: each inner pixel of a new item is the middle code
// of the cross of five (above, left, centre, right, below) or of the 3x3 neighbourhood; the
// border of one pixel is the source's. Without an image 33536 "No images in memory".
#pragma once

void ImageMedianFilter5();
void ImageMedianFilter9();
