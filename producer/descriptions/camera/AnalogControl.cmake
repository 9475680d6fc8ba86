zq_category(AnalogControl "How bright the image is: gain first, then black level, gamma, and the look-up table last.")
zq_float(Gain 0x0900 8 RW "Amplification of the image." STREAMABLE MIN 0 MAX 24 UNIT dB)
zq_float(BlackLevel 0x0908 8 RW "Brightness of black, in levels of 8 bits." STREAMABLE MIN 0 MAX 64)
zq_float(Gamma 0x0910 8 RW "Exponent of the brightness." STREAMABLE MIN 0.25 MAX 4)
