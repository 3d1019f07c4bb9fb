NAME          p  Iterations 3  Rows 4  Cols 6
 XU x0  r1
 XL x1  r0
 UL x3
 LL x4
 BS x2 1.5
 LL r2
 SC x0 2
 BR r3 4
ENDATA
