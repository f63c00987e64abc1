#include "harmonet/definitions/EnvReverbPresets.h"

namespace Quon
{

// room, roomHF, roomRolloffFactor, decayTime, decayHFRatio, reflections, reflectionsDelay, reverb,
// reverbDelay, diffusion, density, hfReference

FXEnvReverb fxEnvReverbDefault = {
    -1000, -100, 0.0F, 1.49F, 0.83F, -2602, 0.007F, 200, 0.011F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbGeneric = {
    -1000, -100, 0.0F, 1.49F, 0.83F, -2602, 0.007F, 200, 0.011F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbPaddedCell = {
    -1000, -6000, 0.0F, 0.17F, 0.1F, -1204, 0.001F, 207, 0.002F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbRoom = {
    -1000, -454, 0.0F, 0.4F, 0.83F, -1646, 0.002F, 53, 0.003F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbBathRoom = {
    -1000, -1200, 0.0F, 1.49F, 0.54F, -370, 0.007F, 1030, 0.011F, 100.0F, 60.0F, 5000.0F};
FXEnvReverb fxEnvReverbLivingRoom = {
    -1000, -6000, 0.0F, 0.5F, 0.1F, -1376, 0.003F, -1104, 0.004F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbStoneRoom = {
    -1000, -300, 0.0F, 2.31F, 0.64F, -711, 0.012F, 83, 0.017F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbAuditorium = {
    -1000, -476, 0.0F, 4.32F, 0.59F, -789, 0.02F, -289, 0.03F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbConcertHall = {
    -1000, -500, 0.0F, 3.92F, 0.7F, -1230, 0.02F, -2, 0.029F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbCave = {
    -1000, 0, 0.0F, 2.91F, 1.3F, -602, 0.015F, -302, 0.022F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbArena = {
    -1000, -698, 0.0F, 7.24F, 0.33F, -1166, 0.02F, 16, 0.03F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbHangar = {
    -1000, -1000, 0.0F, 10.05F, 0.23F, -602, 0.02F, 198, 0.03F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbCarpetedHallway = {
    -1000, -4000, 0.0F, 0.3F, 0.1F, -1831, 0.002F, -1630, 0.03F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbHallway = {
    -1000, -300, 0.0F, 1.49F, 0.59F, -1219, 0.007F, 441, 0.011F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbStoneCorridor = {
    -1000, -237, 0.0F, 2.7F, 0.79F, -1214, 0.013F, 395, 0.02F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbAlley = {
    -1000, -270, 0.0F, 1.49F, 0.86F, -1204, 0.007F, -4, 0.011F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbForest = {
    -1000, -3300, 0.0F, 1.49F, 0.54F, -2560, 0.162F, -613, 0.088F, 79.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbCity = {
    -1000, -800, 0.0F, 1.49F, 0.67F, -2273, 0.007F, -2217, 0.011F, 50.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbMountains = {
    -1000, -2500, 0.0F, 1.49F, 0.21F, -2780, 0.3F, -2014, 0.1F, 27.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbQuarry = {
    -1000, -1000, 0.0F, 1.49F, 0.83F, -10000, 0.061F, 500, 0.025F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbPlain = {
    -1000, -2000, 0.0F, 1.49F, 0.5F, -2466, 0.179F, -2514, 0.1F, 21.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbParkingLot = {
    -1000, 0, 0.0F, 1.65F, 1.5F, -1363, 0.008F, -1153, 0.012F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbSewerPipe = {
    -1000, -1000, 0.0F, 2.81F, 0.14F, 429, 0.014F, 648, 0.021F, 80.0F, 60.0F, 5000.0F};
FXEnvReverb fxEnvReverbUnderwater = {
    -1000, -4000, 0.0F, 1.49F, 0.1F, -449, 0.007F, 1700, 0.011F, 100.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbDrugged = {
    -1000, 0, 0.0F, 8.39F, 1.39F, -115, 0.002F, 895, 0.03F, 50.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbDizzy = {
    -1000, -400, 0.0F, 17.23F, 0.56F, -1713, 0.02F, -613, 0.03F, 60.0F, 100.0F, 5000.0F};
FXEnvReverb fxEnvReverbPsychotic = {
    -1000, -151, 0.0F, 7.56F, 0.91F, -626, 0.002F, 774, 0.03F, 50.0F, 100.0F, 5000.0F};

} // namespace Quon
