#!/usr/bin/env python3
"""Reference values of the noisy cubic in test_poly_regression.cpp, from numpy: the least-squares
coefficients (lstsq on the Vandermonde matrix), the residual standard deviation with n - 4
degrees of freedom and the standard errors sqrt(diag(inv(V^T V)) * s^2) of the coefficient
covariance. Run with a python3 that has numpy and paste the printed constants."""
import numpy as np

n = 101
i = np.arange(n)
x = -1.0 + 2.0 * i / (n - 1)
noise = 0.05 * np.sin(0.37 * i * i)
y = 0.3 - 1.2 * x + 0.7 * x**2 + 2.1 * x**3 + noise
V = np.vander(x, 4, increasing=True)
c, *_ = np.linalg.lstsq(V, y, rcond=None)
r = V @ c - y
s = np.sqrt(r @ r / (n - 4))
cov = np.linalg.inv(V.T @ V) * s * s
print("coefficients", ", ".join(f"{v:.17g}" for v in c))
print("stddev", f"{s:.17g}")
print("errors", ", ".join(f"{v:.17g}" for v in np.sqrt(np.diag(cov))))
print("noise std", f"{np.std(noise):.17g}")
