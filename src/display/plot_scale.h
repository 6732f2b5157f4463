// Round limits and tick steps of a plot axis.
#pragma once

// Widens lo and hi to round limits and gives a tick step, so that an axis carries about 10 to
// 100 ticks. With e(v) = floor(log10(|v|)) (|v| below 1e-16 counts as 1e-16):
//   p = 10^(e(hi - lo) - 1) (1 if that is 0); a = hi / p, b = lo / p;
//   top = ceil(a + 1e-6 + (a - b) * 0.05) as 16 bits, 0 if positive while a <= 0;
//   bot = floor(b - 1e-6 - (a - b) * 0.05), 0 if negative while b >= 0;
//   top rounded away from 0 to a step of 5 (magnitude 20 to 59) or 10 (60 on);
//   bot rounded towards 0 to a step of 5 (magnitude 10 to 59) or 10 (60 on);
//   lo = bot p, hi = top p; with r = |top - bot| the step t is r / 5 (r below 10), 2, 5, 10,
//   20, 50 or 100 (r below 20, 50, 80, 151, 200, and above); tick = t p / 10.
// Limits that would narrow the range are replaced by the old ones widened by 1%; a tick of 0
// becomes 1, and a tick that gives more than 1000 ticks becomes a hundredth of the range.
void AutoScale(float* lo, float* hi, float* tick);

// e(v) above: floor(log10(|v|)), with magnitudes below 1e-16 (and NaN) taken as 1e-16. The
// decade of an axis limit or of a label step.
int PlotExponent(double v);
