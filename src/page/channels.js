// SPDX-License-Identifier: MIT
// The suite's channels by number, which all its programs share, and what the boat calls them.

export const kBsp = 1, kAwa = 2, kAws = 3, kTwa = 4, kTws = 5, kTwd = 6, kHdg = 13, kDepth = 17, kHeel = 18, kLat = 48, kLon = 49, kCog = 50,
  kSog = 51, kDistToLn = 84, kBiasAng = 128,
  kTmToGun = 204, kTmToLn = 205, kBurn = 206, kTargTwa = 237, kTargBsp = 238, kBrg = 289, kRng = 290;

export const own = (id) => ({id, boat: 0});

export class Channels {
  list = [];
  #byId = new Map();

  take(list) {
    this.list = list;
    this.#byId = new Map(list.map((channel) => [channel.id, channel]));
  }

  of({id}) {
    return this.#byId.get(id) ?? {id, name: `Channel ${id}`, longName: '', unit: null, kind: 'number', boats: []};
  }

  // Another boat's channel says whose it is.
  title(channel) {
    const name = this.of(channel).name;
    return channel.boat === 0 ? name : `${name} · boat ${channel.boat}`;
  }
}
