zq_category(AnalogControl "How bright the image is.")
zq_float(Gain 0x0900 8 RW "Amplification of the image." STREAMABLE MIN 0 MAX 24 UNIT dB)
