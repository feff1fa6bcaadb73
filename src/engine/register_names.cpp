#include "register_names.h"

// Short names of the chip's registers, by register number. Register 227 has
// no name; the four registers of the fractional word of channel D share one.
const QStringList registerNames = {
    QStringLiteral("Version1"), QStringLiteral("Version2"), QStringLiteral("Ch_AOK"), QStringLiteral("Ch_AOK_conf"), // 0
    QStringLiteral("Temp_0"), QStringLiteral("Temp_1"), QStringLiteral("IC_MD"), QStringLiteral("Fx_1"), // 4
    QStringLiteral("Fx_0"), QStringLiteral("TS_EXE"), QStringLiteral("CLK_conf"), QStringLiteral("CDiv"), // 8
    QStringLiteral("CLK_OUT"), QStringLiteral("FS_IN"), QStringLiteral("ChA_status"), QStringLiteral("ChA_AOK_CFG"), // 12
    QStringLiteral("ChA_IC_MODE"), QStringLiteral("ChA_Flo_2"), QStringLiteral("ChA_Flo_1"), QStringLiteral("ChA_Flo_0"), // 16
    QStringLiteral("ChA_PLL_DIV_MD"), QStringLiteral("ChA_RDIV"), QStringLiteral("ChA_DSM_0"), QStringLiteral("ChA_DSM_1"), // 20
    QStringLiteral("ChA_PLL_EXE"), QStringLiteral("ChA_LPF_I_BW"), QStringLiteral("ChA_LPF_Q_BW"), QStringLiteral("ChA_LPF_ACS_EXE"), // 24
    QStringLiteral("ChA_IFA_0"), QStringLiteral("ChA_IFA_I_Gain0"), QStringLiteral("ChA_IFA_I_Gain1"), QStringLiteral("ChA_IFA_Q_Gain0"), // 28
    QStringLiteral("ChA_IFA_Q_Gain1"), QStringLiteral("ChA_AAD_0"), QStringLiteral("ChA_AAD_1"), QStringLiteral("ChA_Phase"), // 32
    QStringLiteral("ChB_status"), QStringLiteral("ChB_AOK_CFG"), QStringLiteral("ChB_IC_MODE"), QStringLiteral("ChB_Flo_2"), // 36
    QStringLiteral("ChB_Flo_1"), QStringLiteral("ChB_Flo_0"), QStringLiteral("ChB_PLL_DIV_MD"), QStringLiteral("ChB_RDIV"), // 40
    QStringLiteral("ChB_DSM_0"), QStringLiteral("ChB_DSM_1"), QStringLiteral("ChB_PLL_EXE"), QStringLiteral("ChB_LPF_I_BW"), // 44
    QStringLiteral("ChB_LPF_Q_BW"), QStringLiteral("ChB_LPF_ACS_EXE"), QStringLiteral("ChB_IFA_0"), QStringLiteral("ChB_IFA_I_Gain0"), // 48
    QStringLiteral("ChB_IFA_I_Gain1"), QStringLiteral("ChB_IFA_Q_Gain0"), QStringLiteral("ChB_IFA_Q_Fain1"), QStringLiteral("ChB_AAD_0"), // 52
    QStringLiteral("ChB_AAD_1"), QStringLiteral("ChB_Phase"), QStringLiteral("ChC_status"), QStringLiteral("ChC_AOK_CFG"), // 56
    QStringLiteral("ChC_IC_MODE"), QStringLiteral("ChC_Flo_2"), QStringLiteral("ChC_Flo_1"), QStringLiteral("ChC_Flo_0"), // 60
    QStringLiteral("ChC_PLL_DIV_MD"), QStringLiteral("ChC_RDIV"), QStringLiteral("ChC_DSM_0"), QStringLiteral("ChC_DSM_1"), // 64
    QStringLiteral("ChC_PLL_EXE"), QStringLiteral("ChC_LPF_I_BW"), QStringLiteral("ChC_LPF_Q_BW"), QStringLiteral("ChC_LPF_ACS_EXE"), // 68
    QStringLiteral("ChC_IFA_0"), QStringLiteral("ChC_IFA_I_Gain0"), QStringLiteral("ChC_IFA_I_Gain1"), QStringLiteral("ChC_IFA_Q_Gain0"), // 72
    QStringLiteral("ChC_IFA_Q_Fain1"), QStringLiteral("ChC_AAD_0"), QStringLiteral("ChC_AAD_1"), QStringLiteral("ChC_Phase"), // 76
    QStringLiteral("ChD_status0"), QStringLiteral("ChD_status1"), QStringLiteral("ChD_status2"), QStringLiteral("ChD_status3"), // 80
    QStringLiteral("ChD_status4"), QStringLiteral("ChD_status5"), QStringLiteral("ChD_AOK_CFG"), QStringLiteral("ChD_Flo_2"), // 84
    QStringLiteral("ChD_Flo_1"), QStringLiteral("ChD_Flo_0"), QStringLiteral("ChD_PLL_EXE"), QStringLiteral("ChD_RF_Gain"), // 88
    QStringLiteral("ChD_LPF_CF"), QStringLiteral("ChD_IFA"), QStringLiteral("ChD_IFA_I_Gain0"), QStringLiteral("ChD_IFA_I_Gain1"), // 92
    QStringLiteral("ChD_IFA_Q_Gain0"), QStringLiteral("ChD_IFA_Q_Gain1"), QStringLiteral("ChD_IFA_AGC0"), QStringLiteral("ChD_IFA_AGC1"), // 96
    QStringLiteral("ChD_IFA_AGC2"), QStringLiteral("ChD_IFA_AGC3"), QStringLiteral("ChD_IFA_DC_lvl"), QStringLiteral("ChD_Phase_FM"), // 100
    QStringLiteral("ChD_Phase_VHF"), QStringLiteral("ChD_Phase_UHF"), QStringLiteral("ChD_Phase_LS"), QStringLiteral("IC_MD_PM"), // 104
    QStringLiteral("STM mode"), QStringLiteral("Common_0"), QStringLiteral("Common_1"), QStringLiteral("Common_2"), // 108
    QStringLiteral("ChA_Shutdown0"), QStringLiteral("ChA_Shutdown1"), QStringLiteral("ChA_Shutdown2"), QStringLiteral("ChA_LNA1"), // 112
    QStringLiteral("ChA_LNA2"), QStringLiteral("ChA_Mix"), QStringLiteral("ChA_PPF_0"), QStringLiteral("ChA_PPF_1"), // 116
    QStringLiteral("ChA_PLL_CORE"), QStringLiteral("ChA_DSM_F_2"), QStringLiteral("ChA_DSM_F_1"), QStringLiteral("ChA_DSM_F_0"), // 120
    QStringLiteral("ChA_PLL_DSM_conf"), QStringLiteral("ChA_PLL_LF_0"), QStringLiteral("ChA_PLL_LF_1"), QStringLiteral("ChA_PLL_LF_2"), // 124
    QStringLiteral("ChA_PLL_PFD"), QStringLiteral("ChA_PLL_CP"), QStringLiteral("ChA_PLL_SAS_0"), QStringLiteral("ChA_PLL_SAS_1"), // 128
    QStringLiteral("ChA_PLL_SAS_2"), QStringLiteral("ChA_PLL_SAS_3"), QStringLiteral("ChA_PLL_SAS_4"), QStringLiteral("ChA_PLL_SAS_5"), // 132
    QStringLiteral("ChA_PLL_SAS_6"), QStringLiteral("ChA_PLL_SAS_7"), QStringLiteral("ChA_PLL_SAS_8"), QStringLiteral("ChA_IFA_common"), // 136
    QStringLiteral("ChA_IFA_I"), QStringLiteral("ChA_IFA_Q"), QStringLiteral("ChA_IFA_Test"), QStringLiteral("ChA_LPF_ACS_0"), // 140
    QStringLiteral("ChA_LPF_ACS_1"), QStringLiteral("ChA_LPF_ACS_2"), QStringLiteral("ChA_LPF_ACS_3"), QStringLiteral("ChA_LPF_ACS_4"), // 144
    QStringLiteral("ChA_LPF_ACS_5"), QStringLiteral("ChA_LPF_ACS_6"), QStringLiteral("ChB_Shutdown0"), QStringLiteral("ChB_Shutdown1"), // 148
    QStringLiteral("ChB_Shutdown2"), QStringLiteral("ChB_LNA1"), QStringLiteral("ChB_LNA2"), QStringLiteral("ChB_Mix"), // 152
    QStringLiteral("ChB_PPF_0"), QStringLiteral("ChB_PPF_1"), QStringLiteral("ChB_PLL_CORE"), QStringLiteral("ChB_DSM_F_2"), // 156
    QStringLiteral("ChB_DSM_F_1"), QStringLiteral("ChB_DSM_F_0"), QStringLiteral("ChB_PLL_DSM_conf"), QStringLiteral("ChB_PLL_LF_0"), // 160
    QStringLiteral("ChB_PLL_LF_1"), QStringLiteral("ChB_PLL_LF_2"), QStringLiteral("ChB_PLL_PFD"), QStringLiteral("ChB_PLL_CP"), // 164
    QStringLiteral("ChB_PLL_SAS_0"), QStringLiteral("ChB_PLL_SAS_1"), QStringLiteral("ChB_PLL_SAS_2"), QStringLiteral("ChB_PLL_SAS_3"), // 168
    QStringLiteral("ChB_PLL_SAS_4"), QStringLiteral("ChB_PLL_SAS_5"), QStringLiteral("ChB_PLL_SAS_6"), QStringLiteral("ChB_PLL_SAS_7"), // 172
    QStringLiteral("ChB_PLL_SAS_8"), QStringLiteral("ChB_IFA_common"), QStringLiteral("ChB_IFA_I"), QStringLiteral("ChB_IFA_Q"), // 176
    QStringLiteral("ChB_IFA_Test"), QStringLiteral("ChB_LPF_ACS_0"), QStringLiteral("ChB_LPF_ACS_1"), QStringLiteral("ChB_LPF_ACS_2"), // 180
    QStringLiteral("ChB_LPF_ACS_3"), QStringLiteral("ChB_LPF_ACS_4"), QStringLiteral("ChB_LPF_ACS_5"), QStringLiteral("ChB_LPF_ACS_6"), // 184
    QStringLiteral("ChC_Shutdown0"), QStringLiteral("ChC_Shutdown1"), QStringLiteral("ChC_Shutdown2"), QStringLiteral("ChC_LNA1"), // 188
    QStringLiteral("ChC_LNA2"), QStringLiteral("ChC_Mix"), QStringLiteral("ChC_PPF_0"), QStringLiteral("ChC_PPF_1"), // 192
    QStringLiteral("ChC_PLL_CORE"), QStringLiteral("ChC_DSM_F_2"), QStringLiteral("ChC_DSM_F_1"), QStringLiteral("ChC_DSM_F_0"), // 196
    QStringLiteral("ChC_PLL_DSM_conf"), QStringLiteral("ChC_PLL_LF_0"), QStringLiteral("ChC_PLL_LF_1"), QStringLiteral("ChC_PLL_LF_2"), // 200
    QStringLiteral("ChC_PLL_PFD"), QStringLiteral("ChC_PLL_CP"), QStringLiteral("ChC_PLL_SAS_0"), QStringLiteral("ChC_PLL_SAS_1"), // 204
    QStringLiteral("ChC_PLL_SAS_2"), QStringLiteral("ChC_PLL_SAS_3"), QStringLiteral("ChC_PLL_SAS_4"), QStringLiteral("ChC_PLL_SAS_5"), // 208
    QStringLiteral("ChC_PLL_SAS_6"), QStringLiteral("ChC_PLL_SAS_7"), QStringLiteral("ChC_PLL_SAS_8"), QStringLiteral("ChC_IFA_common"), // 212
    QStringLiteral("ChC_IFA_I"), QStringLiteral("ChC_IFA_Q"), QStringLiteral("ChC_IFA_Test"), QStringLiteral("ChC_LPF_ACS_0"), // 216
    QStringLiteral("ChC_LPF_ACS_1"), QStringLiteral("ChC_LPF_ACS_2"), QStringLiteral("ChC_LPF_ACS_3"), QStringLiteral("ChC_LPF_ACS_4"), // 220
    QStringLiteral("ChC_LPF_ACS_5"), QStringLiteral("ChC_LPF_ACS_6"), QStringLiteral("ChD_PLL_st"), QStringLiteral(""), // 224
    QStringLiteral("Mode"), QStringLiteral("Shutdown0"), QStringLiteral("Shutdown1"), QStringLiteral("Shutdown2"), // 228
    QStringLiteral("Shutdown3"), QStringLiteral("AGC common"), QStringLiteral("RF AGC"), QStringLiteral("LNA AGC0"), // 232
    QStringLiteral("LNA AGC1"), QStringLiteral("LNA AGC2"), QStringLiteral("LNA TRF"), QStringLiteral("Mix conf0"), // 236
    QStringLiteral("Mix conf1"), QStringLiteral("Mix conf2"), QStringLiteral("Mix conf3"), QStringLiteral("Mix conf4"), // 240
    QStringLiteral("Mix conf5"), QStringLiteral("Mix AGC0"), QStringLiteral("Mix AGC1"), QStringLiteral("QF_S"), // 244
    QStringLiteral("VCO0"), QStringLiteral("VCO1"), QStringLiteral("RDiv & DSM"), QStringLiteral("DSM_N"), // 248
    QStringLiteral("DSM_F"), QStringLiteral("DSM_F"), QStringLiteral("DSM_F"), QStringLiteral("DSM_F"), // 252
    QStringLiteral("PLL_LF_0"), QStringLiteral("PLL_LF_1"), QStringLiteral("PLL_LF_2"), QStringLiteral("PLL_PFD"), // 256
    QStringLiteral("PLL_CP"), QStringLiteral("ChD_calc"), QStringLiteral("SAS_0"), QStringLiteral("SAS_1"), // 260
    QStringLiteral("SAS_2"), QStringLiteral("SAS_4"), QStringLiteral("SAS_5"), QStringLiteral("DCOC"), // 264
    QStringLiteral("Ifa_common_0"), QStringLiteral("Ifa_common_1"), QStringLiteral("I_Ifa_0"), QStringLiteral("Q_Ifa_0"), // 268
    QStringLiteral("I_Ifa_Agc_0"), QStringLiteral("I_Ifa_Agc_1"), QStringLiteral("I_Ifa_Agc_2"), QStringLiteral("Q_Ifa_Agc_0"), // 272
    QStringLiteral("Q_Ifa_Agc_1"), QStringLiteral("Q_Ifa_Agc_2"), QStringLiteral("INT_Status_0"), QStringLiteral("INT_Status_1"), // 276
    QStringLiteral("INT_Status_2"), QStringLiteral("INT_Status_3"), QStringLiteral("INT_Status_4"), QStringLiteral("INT_Status_5"), // 280
    QStringLiteral("INT_Status_6"), QStringLiteral("INT_Status_7"), QStringLiteral("INT_Status_8"), QStringLiteral("INT_Status_9"), // 284
    QStringLiteral("INT_Status_10"), QStringLiteral("INT_Status_11"), QStringLiteral("INT_Status_12"), // 288
};
