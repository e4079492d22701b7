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

/** The shortest free berth that takes the boat, so that long ones stay free for long boats. */
export function findBerth(berths: Berth[], boat: Boat, now: Date): Berth | undefined {
    return berths
        .filter((berth) => isFree(berth, now))
        .filter((berth) => berth.lengthMetres >= boat.lengthMetres)
        .filter((berth) => berth.depthMetres >= boat.draughtMetres)
        .sort((a, b) => a.lengthMetres - b.lengthMetres)[0];
}

/** In cents. */
export function pricePerNight(boat: Boat): number {
    return Math.ceil(boat.lengthMetres) * 250;
}
