#include "CharacteristicSteps.h"

#include "protocol/CorvaneFUN26.h"

double characteristicStep(qint32 number, MeasurementSystem system)
{
    const Function26Scale scale = Function26Scale::forSystem(system);
    switch (number) {
    case 1:
        return 0.001;
    case 2:
    case 7:
        return 0.1;
    case 3:
    case 4:
    case 5:
        return scale.distance;
    case 6:
        return scale.velocity;
    case 8:
        return scale.force;
    default:
        return 0;
    }
}
