import { Boat } from "./boat";

export interface Berth {
    number: number;
    lengthMetres: number;
    depthMetres: number;
    heldUntil?: Date;
    boat?: Boat;
}

export function isFree(berth: Berth, now: Date): boolean {
    return !berth.boat && !(berth.heldUntil && berth.heldUntil > now);
}

export function findBerth(berths: Berth[], boat: Boat, now: Date): Berth | undefined {
    return berths.find((berth) => isFree(berth, now) && berth.lengthMetres >= boat.lengthMetres);
}

export function pricePerNight(boat: Boat): number {
    return Math.ceil(boat.lengthMetres) * 250;
}
